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

class StatementCorpusTest : public kvtest::EngineTest {};

TEST_P(StatementCorpusTest, EveryStatementRunsInOrderOnOneDatabase) {
  std::ifstream in(MRVK_STATEMENT_CORPUS);
  ASSERT_TRUE(in) << MRVK_STATEMENT_CORPUS;
  std::string line, name, sql, failures;
  int entries = 0, line_no = 0;
  size_t rows_read = 0;
  auto run = [&] {
    ASSERT_FALSE(name.empty() || sql.find_first_not_of(" \r\n") == std::string::npos)
        << "an entry without its name or its statement before line " << line_no;
    ++entries;
    auto command = db().CreateCommand(sql, 1);
    std::string head = sql.substr(sql.find_first_not_of(" \t\r\n("), 6);
    for (char& c : head) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (head == "select") {
      // Read every row as a grid fill does, so that a value the engine cannot hand back
      // fails here too.
      auto rs = command->OpenRecordset();
      if (db().Error().Description().empty() && !rs->Eof()) rows_read += rs->GetRows().rows;
    } else {
      command->Execute();
    }
    if (!db().Error().Description().empty())
      failures += "  " + name + ": " + db().Error().Description() + "\n";
    name.clear();
    sql.clear();
  };
  while (std::getline(in, line)) {
    ++line_no;
    if (line.rfind(";;", 0) == 0) {
      run();
    } else if (line.rfind("--", 0) == 0 && name.empty()) {
      name = line.substr(3);
    } else {
      sql += line + "\n";
    }
  }
  run();
  EXPECT_GT(entries, 30);
  EXPECT_EQ(failures, "") << "on " << GetParam();
  // The inserts at the start feed the reads after them: a run in which every read came back
  // empty has not tried the values the engines hand back.
  EXPECT_GT(rows_read, 8u);
}

MRVK_ON_BOTH_ENGINES(StatementCorpusTest);

}  // namespace
}  // namespace kvhost
