// The statements of the built screens (the master sheets and their entry dialogs, the field
// lists and pickers they open, the collection schedule), written as those screens write them
// and run through the module's own path (rewriter, engine) on both engines. They live in
// statement_corpus.sql, in the order of a working day, the deletes last; a screen adds its
// statements when it is built. Entries are separated by a line holding only ";;"; each starts
// with a line "-- <what issues it>".
#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <string>
#include <vector>

#include "support/engines.h"

namespace kvhost {
namespace {

struct Entry {
  std::string name;
  std::string sql;
  int line = 0;  // line of the entry's name in the file
};

struct Corpus {
  std::vector<Entry> entries;
  std::vector<std::string> problems;  // entries the file holds in a broken form
};

std::string Trimmed(const std::string& s) {
  const size_t b = s.find_first_not_of(" \t\r\n");
  if (b == std::string::npos) return "";
  const size_t e = s.find_last_not_of(" \t\r\n");
  return s.substr(b, e - b + 1);
}

Corpus ReadCorpus(const std::string& path) {
  Corpus corpus;
  std::ifstream in(path);
  if (!in) {
    corpus.problems.push_back("cannot open " + path);
    return corpus;
  }
  Entry entry;
  int line_no = 0;
  int block_start = 1;
  auto finish = [&] {
    entry.sql = Trimmed(entry.sql);
    if (entry.name.empty() && entry.sql.empty()) {
      corpus.problems.push_back("empty entry at line " + std::to_string(block_start));
    } else if (entry.name.empty()) {
      corpus.problems.push_back("entry without a name at line " + std::to_string(block_start));
    } else if (entry.sql.empty()) {
      corpus.problems.push_back("entry without a statement: " + entry.name);
    } else {
      corpus.entries.push_back(entry);
    }
    entry = Entry{};
  };
  std::string line;
  while (std::getline(in, line)) {
    ++line_no;
    const std::string t = Trimmed(line);
    if (t == ";;") {
      finish();
      block_start = line_no + 1;
    } else if (t.rfind("--", 0) == 0 && entry.sql.empty()) {
      if (entry.name.empty()) {
        entry.name = Trimmed(t.substr(2));
        entry.line = line_no;
      }
    } else {
      entry.sql += line + "\n";
    }
  }
  finish();
  return corpus;
}

// The statement yields rows: it begins with SELECT, perhaps behind opening brackets.
bool IsSelect(const std::string& sql) {
  size_t i = sql.find_first_not_of(" \t\r\n(");
  if (i == std::string::npos || sql.size() - i < 6) return false;
  std::string word = sql.substr(i, 6);
  for (char& c : word) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return word == "select";
}

std::string Listed(const std::vector<std::string>& lines) {
  std::string out;
  for (const std::string& l : lines) out += "  " + l + "\n";
  return out;
}

class StatementCorpusTest : public kvtest::EngineTest {};

TEST_P(StatementCorpusTest, EveryStatementRunsInOrderOnOneDatabase) {
  const Corpus corpus = ReadCorpus(MRVK_STATEMENT_CORPUS);
  ASSERT_TRUE(corpus.problems.empty()) << Listed(corpus.problems);
  ASSERT_GT(corpus.entries.size(), 30u);
  std::vector<std::string> failures;
  size_t rows_read = 0;
  for (const Entry& e : corpus.entries) {
    SCOPED_TRACE(e.name);
    auto command = db().CreateCommand(e.sql, 1);
    if (IsSelect(e.sql)) {
      // Read every row as a grid fill does, so that a value the engine cannot hand back
      // fails here too.
      auto rs = command->OpenRecordset();
      if (db().Error().Description().empty() && !rs->Eof()) rows_read += rs->GetRows().rows;
    } else {
      command->Execute();
    }
    const std::string error = db().Error().Description();
    if (!error.empty())
      failures.push_back(e.name + " (line " + std::to_string(e.line) + "): " + error);
  }
  EXPECT_TRUE(failures.empty()) << failures.size() << " of " << corpus.entries.size()
                                << " statements failed on " << GetParam() << ":\n"
                                << Listed(failures);
  // The inserts at the start feed the reads after them: a run in which every read came back
  // empty has not tried the values the engines hand back.
  EXPECT_GT(rows_read, 8u);
}

MRVK_ON_BOTH_ENGINES(StatementCorpusTest);

}  // namespace
}  // namespace kvhost
