#include "kvhost/db/sql_rewriter.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>

#include "mrvk/frame/vb.h"

namespace kvhost::db {

// A literal of a statement in its rewriting template.
struct Slot {
  int literal;                    // index among the statement's literals
  bool param;                     // lifted into a parameter, else written into the text
  bool negative;                  // the '-' before the number belongs to the parameter
  bool like;                      // the right side of a like: no type check
  bool compared;                  // the right side of a comparison, not a VALUES entry
  std::optional<ColType> target;  // the column the value is compared with or stored in
  std::string target_name;
};

// How every statement of one shape is rewritten: text pieces around the literal slots.
struct SqlRewriter::Plan {
  std::vector<std::string> pieces;  // slots.size() + 1 pieces
  std::vector<Slot> slots;
  bool is_select = false;
  uint64_t id = 0;
};

namespace {

enum class Tok { Space, Word, Number, String, Punct };

}  // namespace

struct Token {
  Token(Tok k, std::string_view t) : kind(k), text(t) {}
  Tok kind;
  // A view into the statement, or into the rewrite's arena for texts made here.
  // Word: the name; Number: digits; String: the value, unquoted; Punct: the operator.
  std::string_view text;
  bool is_date = false;  // a String that came from a #date# literal
  bool removed = false;
  std::string_view suffix;  // text written after the token (a LIMIT clause)
  int literal = -1;         // index among the statement's literals
  // How a literal goes out (see Slot).
  bool lift = false;
  bool negative = false;
  bool like = false;
  bool compared = false;
  std::optional<ColType> target;
  std::string_view target_name;
};

// A literal as the shape scan reads it.
struct Literal {
  Tok kind;
  std::string_view text;
  bool is_date;
};

namespace {

char LowerChar(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// a equals the lower-case word w without regard to ASCII case.
bool IEquals(std::string_view a, std::string_view w) {
  if (a.size() != w.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (LowerChar(a[i]) != w[i]) return false;
  }
  return true;
}

// Hashing and comparing names without regard to ASCII case, for lookups without copies.
struct CaseInsensitiveHash {
  using is_transparent = void;
  size_t operator()(std::string_view s) const {
    size_t h = 1469598103934665603ull;
    for (char c : s) h = (h ^ static_cast<unsigned char>(LowerChar(c))) * 1099511628211ull;
    return h;
  }
};
struct CaseInsensitiveEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
      if (LowerChar(a[i]) != LowerChar(b[i])) return false;
    }
    return true;
  }
};

inline bool Is(std::string_view t, char c) { return t.size() == 1 && t[0] == c; }
inline bool IsPunct(unsigned char c) {
  switch (c) {
    case '(':
    case ')':
    case ',':
    case '.':
    case '=':
    case '<':
    case '>':
    case '+':
    case '-':
    case '*':
    case '/':
    case '%':
    case '&':
    case ';':
      return true;
    default:
      return false;
  }
}
inline bool IsDigit(unsigned char c) { return c >= '0' && c <= '9'; }
inline bool IsWordStart(unsigned char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c >= 0x80;
}
inline bool IsWordChar(unsigned char c) { return IsWordStart(c) || IsDigit(c) || c == '$'; }

// Jet accepts #yyyy-mm-dd#, #yyyy/m/d# and the US form #m/d/yyyy#.
std::optional<std::string> NormalizeJetDate(std::string_view text) {
  if (auto d = mrvk::ParseDate(text)) return d->ToText();
  const std::string t = mrvk::Trim(text);
  int m = 0, d = 0, y = 0;
  char tail = 0;
  if (std::sscanf(t.c_str(), "%d/%d/%d%c", &m, &d, &y, &tail) == 3 && y >= 1000 &&
      mrvk::IsValidDate(y, m, d)) {
    return mrvk::Date::FromYmd(y, m, d).ToText();
  }
  return std::nullopt;
}

// Texts made while rewriting (unescaped literals, normalised dates); a deque keeps their
// addresses stable while tokens point at them.
using Arena = std::deque<std::string>;

std::string_view Keep(Arena& arena, std::string text) {
  arena.push_back(std::move(text));
  return arena.back();
}

// Where the tokenizer puts what it reads: Add(kind, text, is_date) for each token.
struct TokenList {
  std::vector<Token>& tokens;
  void Add(Tok kind, std::string_view text, bool is_date = false) {
    tokens.emplace_back(kind, text);
    tokens.back().is_date = is_date;
  }
};

// The statement's shape: its text with each literal replaced by a mark of its kind, and the
// literals in order. The number of a `top n` is part of the shape, not a literal. Token
// lists number their literals by the same rule (MarkLiterals).
struct ShapeScan {
  std::string& shape;
  std::vector<Literal>& literals;
  bool after_top = false;
  void Add(Tok kind, std::string_view text, bool is_date = false) {
    if ((kind == Tok::String || kind == Tok::Number) && !(kind == Tok::Number && after_top)) {
      literals.push_back({kind, text, is_date});
      shape += kind == Tok::Number ? '\x02' : is_date ? '\x03' : '\x01';
    } else {
      shape += text;
    }
    if (kind != Tok::Space) after_top = kind == Tok::Word && IEquals(text, "top");
  }
};

template <typename Sink>
bool Tokenize(std::string_view sql, Sink& out, Arena& arena, std::string& error) {
  size_t i = 0;
  const size_t n = sql.size();
  while (i < n) {
    const unsigned char c = static_cast<unsigned char>(sql[i]);
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      size_t j = i;
      while (j < n && (sql[j] == ' ' || sql[j] == '\t' || sql[j] == '\r' || sql[j] == '\n')) ++j;
      out.Add(Tok::Space, sql.substr(i, j - i));
      i = j;
    } else if (c == '\'' || c == '"') {
      const char q = static_cast<char>(c);
      size_t j = i + 1;
      bool closed = false;
      bool doubled = false;
      while (j < n) {
        if (sql[j] == q) {
          if (j + 1 < n && sql[j + 1] == q) {
            doubled = true;
            j += 2;
            continue;
          }
          closed = true;
          break;
        }
        ++j;
      }
      if (!closed) {
        error = "unterminated text literal";
        return false;
      }
      std::string_view value = sql.substr(i + 1, j - i - 1);
      if (doubled) {
        std::string unescaped;
        for (size_t k = 0; k < value.size(); ++k) {
          unescaped.push_back(value[k]);
          if (value[k] == q) ++k;  // the second of a doubled quote
        }
        value = Keep(arena, std::move(unescaped));
      }
      out.Add(Tok::String, value);
      i = j + 1;
    } else if (c == '#') {
      const size_t close = sql.find('#', i + 1);
      if (close == std::string_view::npos) {
        error = "unterminated date literal";
        return false;
      }
      const std::string_view raw = sql.substr(i + 1, close - i - 1);
      auto date = NormalizeJetDate(raw);
      if (!date) {
        error = "not a date: #" + std::string(raw) + "#";
        return false;
      }
      out.Add(Tok::String, Keep(arena, std::move(*date)), /*is_date=*/true);
      i = close + 1;
    } else if (c == '[') {
      const size_t close = sql.find(']', i + 1);
      if (close == std::string_view::npos) {
        error = "unterminated bracketed name";
        return false;
      }
      const std::string_view name = sql.substr(i + 1, close - i - 1);
      if (name.empty() || !IsWordStart(static_cast<unsigned char>(name[0])) ||
          !std::all_of(name.begin(), name.end(),
                       [](char ch) { return IsWordChar(static_cast<unsigned char>(ch)); })) {
        error = "bracketed name not supported: [" + std::string(name) + "]";
        return false;
      }
      out.Add(Tok::Word, name);
      i = close + 1;
    } else if (IsDigit(c) ||
               (c == '.' && i + 1 < n && IsDigit(static_cast<unsigned char>(sql[i + 1])))) {
      size_t j = i;
      while (j < n && IsDigit(static_cast<unsigned char>(sql[j]))) ++j;
      if (j < n && sql[j] == '.') {
        ++j;
        while (j < n && IsDigit(static_cast<unsigned char>(sql[j]))) ++j;
      }
      if (j < n && (sql[j] == 'e' || sql[j] == 'E')) {
        size_t k = j + 1;
        if (k < n && (sql[k] == '+' || sql[k] == '-')) ++k;
        if (k < n && IsDigit(static_cast<unsigned char>(sql[k]))) {
          while (k < n && IsDigit(static_cast<unsigned char>(sql[k]))) ++k;
          j = k;
        }
      }
      if (j < n && IsWordStart(static_cast<unsigned char>(sql[j]))) {
        error = "malformed number near \"" + std::string(sql.substr(i, j - i + 1)) + "\"";
        return false;
      }
      out.Add(Tok::Number, sql.substr(i, j - i));
      i = j;
    } else if (IsWordStart(c)) {
      size_t j = i;
      while (j < n && IsWordChar(static_cast<unsigned char>(sql[j]))) ++j;
      out.Add(Tok::Word, sql.substr(i, j - i));
      i = j;
    } else {
      if ((c == '-' && i + 1 < n && sql[i + 1] == '-') ||
          (c == '/' && i + 1 < n && sql[i + 1] == '*')) {
        error = "comments are not accepted in a statement";
        return false;
      }
      std::string_view op = sql.substr(i, 1);
      const char next = i + 1 < n ? sql[i + 1] : '\0';
      if ((next == '=' && (c == '<' || c == '>' || c == '!')) || (c == '<' && next == '>') ||
          (c == '|' && next == '|')) {
        op = sql.substr(i, 2);
      } else if (!IsPunct(c)) {
        error = std::string("unexpected character '") + static_cast<char>(c) + "'";
        return false;
      }
      out.Add(Tok::Punct, op);
      i += op.size();
    }
  }
  return true;
}

bool IsComparison(std::string_view p) {
  return p == "=" || p == "<>" || p == "!=" || p == "<" || p == ">" || p == "<=" || p == ">=";
}

bool IsArithmetic(const Token& t) {
  return t.kind == Tok::Punct &&
         (Is(t.text, '+') || Is(t.text, '-') || Is(t.text, '*') || Is(t.text, '/') ||
          Is(t.text, '%') || Is(t.text, '&') || t.text == "||");
}

std::string QuoteText(std::string_view value) {
  std::string out = "'";
  for (char c : value) {
    out.push_back(c);
    if (c == '\'') out.push_back('\'');
  }
  out.push_back('\'');
  return out;
}

// The value of a lifted literal. A value bound for a date column must be a real date (stored
// as yyyy-mm-dd); a quoted value bound for a numeric column must be a number; a bare number
// compared with a text column is a text.
bool MakeParam(const Literal& t, const Slot& slot, SqlParam& param, std::string& error) {
  if (t.kind == Tok::Number) {
    param.text = slot.negative ? "-" : "";
    param.text += t.text;
    param.kind = t.text.find_first_of(".eE") == std::string_view::npos && t.text.size() < 18
                     ? SqlParam::Kind::Integer
                     : SqlParam::Kind::Real;
  } else {
    param.text = std::string(t.text);
    param.kind = SqlParam::Kind::Text;
  }
  if (!slot.target || slot.like) return true;
  if (*slot.target == ColType::Text || *slot.target == ColType::Memo) {
    // A bare number compared with a text column stands for the text it is written as: the
    // approval test "smark=02" looks for the mark "02" as the column holds it, not for 2.
    // Stored by a VALUES list it stays a number, which the column keeps as its text.
    if (t.kind == Tok::Number && slot.compared) param.kind = SqlParam::Kind::Text;
    return true;
  }
  if (*slot.target == ColType::Date) {
    auto d = param.kind == SqlParam::Kind::Text ? mrvk::ParseDate(param.text) : std::nullopt;
    if (!d) {
      error = "not a date for column " + slot.target_name + ": '" + param.text + "'";
      return false;
    }
    // Already in the stored form (yyyy-mm-dd): kept as it is.
    if (param.text.size() != 10 || param.text[4] != '-' || param.text[7] != '-')
      param.text = d->ToText();
  } else if ((*slot.target == ColType::Long || *slot.target == ColType::Flag ||
              *slot.target == ColType::Double) &&
             param.kind == SqlParam::Kind::Text) {
    const std::string trimmed = mrvk::Trim(param.text);
    char* end = nullptr;
    std::strtod(trimmed.c_str(), &end);
    if (trimmed.empty() || end != trimmed.c_str() + trimmed.size()) {
      error = "not a number for column " + slot.target_name + ": '" + param.text + "'";
      return false;
    }
    param.text = trimmed;
    param.kind = trimmed.find_first_of(".eE") == std::string::npos ? SqlParam::Kind::Integer
                                                                   : SqlParam::Kind::Real;
  }
  return true;
}

}  // namespace

ColumnTypeLookup SchemaColumnTypes() {
  // name -> type, or nullopt when the name has different types in different tables.
  auto types = std::make_shared<std::unordered_map<std::string, std::optional<ColType>,
                                                   CaseInsensitiveHash, CaseInsensitiveEqual>>();
  for (const TableDef& table : Tables()) {
    for (const ColumnDef& col : table.columns) {
      auto it = types->find(col.name);
      if (it == types->end()) {
        types->emplace(std::string(col.name), col.type);
      } else if (it->second && *it->second != col.type) {
        // Long and Flag are both whole numbers; anything else conflicting is unknown.
        const bool both_whole = (*it->second == ColType::Long || *it->second == ColType::Flag) &&
                                (col.type == ColType::Long || col.type == ColType::Flag);
        const bool both_text = (*it->second == ColType::Text || *it->second == ColType::Memo) &&
                               (col.type == ColType::Text || col.type == ColType::Memo);
        if (!both_whole && !both_text) it->second = std::nullopt;
      }
    }
  }
  return [types](std::string_view name) -> std::optional<ColType> {
    auto it = types->find(name);
    if (it == types->end()) return std::nullopt;
    return it->second;
  };
}

SqlRewriter::SqlRewriter(Dialect dialect, ColumnTypeLookup column_types)
    : dialect_(dialect), column_types_(std::move(column_types)) {}

bool SqlRewriter::BuildPlan(std::vector<Token>& toks, Plan& plan, std::string& error) const {
  // The non-blank tokens, by position in toks.
  std::vector<size_t> idx;
  idx.reserve(toks.size());
  for (size_t i = 0; i < toks.size(); ++i) {
    if (toks[i].kind != Tok::Space) idx.push_back(i);
  }
  // A trailing ";" is dropped; anything after a ";" is a second statement and refused.
  for (size_t k = 0; k < idx.size(); ++k) {
    Token& t = toks[idx[k]];
    if (t.kind == Tok::Punct && Is(t.text, ';')) {
      if (k + 1 != idx.size()) {
        error = "only one statement at a time is accepted";
        return false;
      }
      t.removed = true;
      idx.pop_back();
      break;
    }
  }
  if (idx.empty()) {
    error = "empty statement";
    return false;
  }
  auto tok = [&](size_t k) -> Token& { return toks[idx[k]]; };
  auto word_is = [&](size_t k, const char* w) {
    return k < idx.size() && tok(k).kind == Tok::Word && IEquals(tok(k).text, w);
  };
  auto punct_is = [&](size_t k, std::string_view p) {
    return k < idx.size() && tok(k).kind == Tok::Punct && tok(k).text.size() == p.size() &&
           tok(k).text[0] == p[0] && (p.size() == 1 || tok(k).text == p);
  };
  auto column_type = [&](size_t k) -> std::optional<ColType> {
    if (k >= idx.size() || tok(k).kind != Tok::Word || !column_types_) return std::nullopt;
    return column_types_(tok(k).text);
  };

  {
    size_t first = 0;
    while (punct_is(first, "(")) ++first;
    plan.is_select = word_is(first, "select");
  }

  // Pass 1: structure. `top n` becomes a LIMIT at the end of its select's scope; a UNION in
  // that scope would make the LIMIT cover the whole compound, so it is refused.
  struct Scope {
    std::string limit;  // the LIMIT of a `top n` met in this scope
  };
  std::vector<Scope> scopes(1);
  std::deque<std::string> suffixes;
  auto add_limit = [&](Token& t, const std::string& limit) {
    t.suffix = suffixes.emplace_back(std::string(t.suffix) + " LIMIT " + limit);
  };
  // Insert column lists, to know the column of each VALUES entry.
  std::vector<std::string_view> insert_columns;
  bool in_insert_columns = false;
  for (size_t k = 0; k < idx.size(); ++k) {
    Token& t = tok(k);
    if (t.kind == Tok::Punct && Is(t.text, '(')) {
      Scope s;
      in_insert_columns =
          k >= 2 && word_is(k - 2, "into") && tok(k - 1).kind == Tok::Word && scopes.size() == 1;
      if (in_insert_columns) insert_columns.clear();
      scopes.push_back(s);
      continue;
    }
    if (t.kind == Tok::Punct && Is(t.text, ')')) {
      if (scopes.size() == 1) {
        error = "unbalanced parentheses";
        return false;
      }
      if (!scopes.back().limit.empty()) add_limit(tok(k - 1), scopes.back().limit);
      scopes.pop_back();
      in_insert_columns = false;
      continue;
    }
    if (in_insert_columns && t.kind == Tok::Word && scopes.size() == 2) {
      insert_columns.push_back(t.text);
    }
    if (t.kind == Tok::Word && IEquals(t.text, "top")) {
      size_t before = k - 1;
      if (k > 0 && (word_is(before, "distinct") || word_is(before, "all")) && before > 0) --before;
      if (k > 0 && word_is(before, "select")) {
        if (k + 1 >= idx.size() || tok(k + 1).kind != Tok::Number ||
            tok(k + 1).text.find_first_not_of("0123456789") != std::string::npos) {
          error = "top must be followed by a whole number";
          return false;
        }
        if (word_is(k + 2, "percent")) {
          error = "top ... percent is not supported";
          return false;
        }
        scopes.back().limit = std::string(tok(k + 1).text);
        t.removed = true;
        tok(k + 1).removed = true;
        // Drop the blanks after `top` and after the number too.
        for (size_t at : {idx[k] + 1, idx[k + 1] + 1}) {
          if (at < toks.size() && toks[at].kind == Tok::Space) toks[at].removed = true;
        }
        ++k;
        continue;
      }
    }
    if (t.kind == Tok::Word && IEquals(t.text, "union") && !scopes.back().limit.empty()) {
      error = "top in a select joined by union is not supported";
      return false;
    }
  }
  if (scopes.size() != 1) {
    error = "unbalanced parentheses";
    return false;
  }
  if (!scopes.back().limit.empty()) add_limit(tok(idx.size() - 1), scopes.back().limit);

  // Pass 2: operators, functions and literals.
  int depth_values = -1;  // depth of the VALUES list being read
  int depth = 0;
  int values_entry = 0;
  for (size_t k = 0; k < idx.size(); ++k) {
    Token& t = tok(k);
    if (t.removed) continue;
    if (t.kind == Tok::Punct) {
      if (Is(t.text, '(')) {
        ++depth;
        if (k > 0 && word_is(k - 1, "values")) {
          depth_values = depth;
          values_entry = 0;
        }
      } else if (Is(t.text, ')')) {
        if (depth == depth_values) depth_values = -1;
        --depth;
      } else if (Is(t.text, ',') && depth == depth_values) {
        ++values_entry;
      } else if (Is(t.text, '&')) {
        t.text = "||";
      } else if (Is(t.text, '+')) {
        auto texty = [&](size_t j) {
          if (j >= idx.size()) return false;
          const Token& o = tok(j);
          if (o.kind == Tok::String) return !o.is_date;
          auto type = column_type(j);
          return type && (*type == ColType::Text || *type == ColType::Memo);
        };
        if ((k > 0 && texty(k - 1)) || texty(k + 1)) t.text = "||";
      }
      continue;
    }
    if (t.kind == Tok::Word) {
      if (dialect_ == Dialect::Postgres) {
        if (IEquals(t.text, "like")) t.text = "ilike";  // Jet compares without regard to case
        if (IEquals(t.text, "date") && punct_is(k + 1, "(") && punct_is(k + 2, ")")) {
          t.text = "current_date";
          tok(k + 1).removed = tok(k + 2).removed = true;
        }
        if (IEquals(t.text, "now") && punct_is(k + 1, "(") && punct_is(k + 2, ")")) {
          t.text = "localtimestamp";
          tok(k + 1).removed = tok(k + 2).removed = true;
        }
      }
      continue;
    }
    // A literal: lift it into a parameter where its type is fixed by its place: the right
    // side of a comparison with a column, or a whole entry of a VALUES list.
    bool negative_number = false;
    if (t.kind == Tok::Number && k > 0 && punct_is(k - 1, "-") && k > 1 &&
        (tok(k - 2).kind == Tok::Punct &&
         (IsComparison(tok(k - 2).text) || Is(tok(k - 2).text, '(') || Is(tok(k - 2).text, ',')))) {
      negative_number = true;
    }
    const size_t op_pos = negative_number ? k - 2 : k - 1;
    std::optional<ColType> target;
    std::string_view target_name;
    bool liftable = false;
    bool like = false;
    bool compared = false;
    const bool next_ok =
        !(k + 1 < idx.size() && (IsArithmetic(tok(k + 1)) || punct_is(k + 1, ".")));
    if (k > 0 && next_ok) {
      const Token& op = tok(op_pos);
      like = op.kind == Tok::Word && (IEquals(op.text, "like") || IEquals(op.text, "ilike"));
      const bool cmp = (op.kind == Tok::Punct && IsComparison(op.text)) || like;
      if (cmp && op_pos > 0 && tok(op_pos - 1).kind == Tok::Word) {
        liftable = true;
        compared = true;
        target_name = tok(op_pos - 1).text;
        target = column_type(op_pos - 1);
      } else if (depth == depth_values && op.kind == Tok::Punct &&
                 (Is(op.text, '(') || Is(op.text, ',')) &&
                 (punct_is(k + 1, ",") || punct_is(k + 1, ")"))) {
        liftable = true;
        if (values_entry < static_cast<int>(insert_columns.size()) && column_types_) {
          target_name = insert_columns[static_cast<size_t>(values_entry)];
          target = column_types_(target_name);
        }
      }
    }
    if (!liftable) continue;  // stays in the text as it stands (texts re-quoted on output)
    t.lift = true;
    t.negative = negative_number;
    t.like = like;
    t.compared = compared;
    t.target = target;
    t.target_name = target_name;
    if (negative_number) tok(k - 1).removed = true;
  }

  // The template: text pieces between the literals, each literal a slot.
  plan.pieces.emplace_back();
  for (const Token& t : toks) {
    if (t.removed) {
      plan.pieces.back() += t.suffix;
      continue;
    }
    if (t.literal >= 0) {
      plan.slots.push_back({t.literal, t.lift, t.negative, t.like, t.compared, t.target,
                            std::string(t.target_name)});
      plan.pieces.emplace_back();
    } else {
      plan.pieces.back() += t.text;
    }
    plan.pieces.back() += t.suffix;
  }
  return true;
}

bool SqlRewriter::Rewrite(std::string_view sql, RewrittenSql& out, std::string& error) const {
  out = RewrittenSql{};
  Arena arena;
  std::string shape;
  shape.reserve(sql.size());
  std::vector<Literal> literals;
  ShapeScan scan{shape, literals};
  if (!Tokenize(sql, scan, arena, error)) return false;
  auto it = plans_.find(shape);
  if (it == plans_.end()) {
    // A shape not seen before: read the statement in full and work out its template.
    std::vector<Token> toks;
    toks.reserve(64);
    TokenList list{toks};
    if (!Tokenize(sql, list, arena, error)) return false;
    int n = 0;
    bool after_top = false;
    for (Token& t : toks) {
      if ((t.kind == Tok::String || t.kind == Tok::Number) && !(t.kind == Tok::Number && after_top))
        t.literal = n++;
      if (t.kind != Tok::Space) after_top = t.kind == Tok::Word && IEquals(t.text, "top");
    }
    auto plan = std::make_shared<Plan>();
    if (!BuildPlan(toks, *plan, error)) return false;
    // Unique across rewriters, since several may feed one connection.
    static std::atomic<uint64_t> next_id{0};
    plan->id = ++next_id;
    if (plans_.size() >= kMaxPlans) plans_.clear();
    it = plans_.emplace(std::move(shape), std::move(plan)).first;
  }
  return Apply(*it->second, literals, out, error);
}

bool SqlRewriter::Apply(const Plan& plan, const std::vector<Literal>& literals, RewrittenSql& out,
                        std::string& error) const {
  out.is_select = plan.is_select;
  out.shape_id = plan.id;
  std::string& s = out.sql;
  s.reserve(plan.pieces.front().size() * 2 + 64);
  for (size_t i = 0; i < plan.slots.size(); ++i) {
    s += plan.pieces[i];
    const Slot& slot = plan.slots[i];
    const Literal& t = literals[static_cast<size_t>(slot.literal)];
    if (!slot.param) {
      out.shape_id = 0;  // the literal makes this statement's text its own
      if (t.kind == Tok::String) {
        s += QuoteText(t.text);
      } else {
        s += t.text;
      }
      continue;
    }
    SqlParam param;
    if (!MakeParam(t, slot, param, error)) return false;
    out.params.push_back(std::move(param));
    // The marker never runs into a neighbouring word: the statements write "like'%x%'" and
    // "'x'and progid", and on PostgreSQL "ilike$1" or "$1and" would read as one name.
    if (!s.empty() && IsWordChar(static_cast<unsigned char>(s.back()))) s += ' ';
    if (dialect_ == Dialect::Sqlite) {
      s += '?';
    } else {
      s += '$';
      s += std::to_string(out.params.size());
    }
    const std::string& next = plan.pieces[i + 1];
    if (!next.empty() && IsWordChar(static_cast<unsigned char>(next.front()))) s += ' ';
  }
  s += plan.pieces.back();
  return true;
}

}  // namespace kvhost::db
