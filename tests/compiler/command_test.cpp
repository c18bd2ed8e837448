// SPDX-License-Identifier: Apache-2.0
// The command orlentac: exit statuses, and files that are written whole or not at all.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace fs = std::filesystem;

namespace {

class Command : public testing::Test {
  protected:
    void SetUp() override {
        folder = fs::path(testing::TempDir()) / ("orlentac." + std::to_string(getpid()));
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    void TearDown() override { fs::remove_all(folder); }

    std::string write(const std::string& name, const std::string& text) {
        std::ofstream(folder / name) << text;
        return folder / name;
    }
    std::string read(const std::string& name) {
        std::ifstream in(folder / name);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // Exit status; what is printed goes to the files out and err.
    int run(const std::string& arguments) {
        std::string command =
            ORLENTAC " " + arguments + " >" + (folder / "out").string() + " 2>" + (folder / "err").string();
        int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // To compile `module` to tables and a header.
    std::string compile(const std::string& module, const std::string& more = "") {
        return "--region T --tables-dir " + (folder / "gen").string() + " --header " +
               (folder / "gen/t.h").string() + " " + more + " " + module;
    }
    size_t files_made() {
        if (!fs::exists(folder / "gen")) return 0;
        return std::distance(fs::directory_iterator(folder / "gen"), fs::directory_iterator());
    }

    fs::path folder;
};

constexpr const char* kGood =
    "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN A ::= BOOLEAN B ::= INTEGER (0..7) END\n";

TEST_F(Command, WritesTablesHeaderAndChecks) {
    std::string module = write("m.asn1", kGood);
    ASSERT_EQ(run(compile(module, "--parts 2 --summary")), 0) << read("err");
    EXPECT_EQ(files_made(), 7u);
    EXPECT_NE(read("gen/t_tables_1.cpp").find("asn1_type_T_A[2]"), std::string::npos);
    EXPECT_NE(read("gen/t.h").find("typedef uint32_t asn1_T_B;"), std::string::npos);
    EXPECT_NE(read("out").find("named"), std::string::npos);
}

TEST_F(Command, TheNamespaceOfARegionIsNoOtherNameOfTheLibrary) {
    std::string header = " --header " + (folder / "t.h").string() + " " + write("m.asn1", kGood);
    for (const auto& [region, name] : {std::pair("Text", "text_"), {"Class", "class_"}, {"Texts", "texts"}}) {
        ASSERT_EQ(run(std::string("--region ") + region + header), 0) << read("err");
        EXPECT_NE(read("t.hpp").find("namespace orlenta::" + std::string(name) + " {"), std::string::npos);
    }
}

TEST_F(Command, WritesUnitsIntoTheHeader) {
    std::string module =
        write("m.asn1",
              "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\nB ::= INTEGER (0..7) --@ unit 0.5  m;7 unknown\n"
              "C ::= SEQUENCE { x INTEGER (0..9) --@ unit 1 s -- }\nEND\n");
    ASSERT_EQ(run(compile(module)), 0) << read("err");
    std::string header = read("gen/t.h");
    EXPECT_NE(header.find("/* INTEGER (0..7); unit 0.5 m;7 unknown */\ntypedef uint32_t asn1_T_B;"),
              std::string::npos);
    EXPECT_NE(header.find("    uint32_t x; /* INTEGER (0..9); unit 1 s */\n"), std::string::npos);
}

// Also what would end a comment or a string, or join two lines.
TEST_F(Command, WritesCommentsIntoTheHeader) {
    std::string module =
        write("m.asn1",
              "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
              "-- \"Speed\" over ground, what?\?/ */ /* \\\n--   of it.\nB ::= INTEGER (0..7)\n"
              "-- Once more.\nC ::= B\n-- With a tag.\nD ::= [5] C\n"
              "/** @brief Of " +
                  std::string(30, 'x') + " " + std::string(80, 'y') + " */\nE ::= SEQUENCE { b B }\nEND\n");
    ASSERT_EQ(run(compile(module)), 0) << read("err");
    std::string header = read("gen/t.h"), typed = read("gen/t.hpp");
    for (const char* text :
         {"/* \"Speed\" over ground, what? ?/ * / / * \\ of it.\n * INTEGER (0..7) */\ntypedef",
          "/* Once more. */\ntypedef asn1_T_B asn1_T_C;", "/* With a tag. */\ntypedef",
          "/* Of xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\n * yyyyyyy", "y\n * SEQUENCE */\nstruct asn1_T_E {"})
        EXPECT_NE(header.find(text), std::string::npos) << text << header;
    for (const char* text :
         {"// Once more.\nusing C = B;", "// With a tag.\nusing D = ", "y\nstruct ORLENTA_OVERLAY"})
        EXPECT_NE(typed.find(text), std::string::npos) << text << typed;
}

TEST_F(Command, LeavesFilesAloneThatAreTheSame) {
    std::string module = write("m.asn1", kGood);
    ASSERT_EQ(run(compile(module)), 0);
    auto long_ago = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (const auto& file : fs::directory_iterator(folder / "gen")) fs::last_write_time(file, long_ago);
    write("m.asn1", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN A ::= BOOLEAN B ::= INTEGER (0..8) END\n");
    ASSERT_EQ(run(compile(module)), 0);
    EXPECT_EQ(fs::last_write_time(folder / "gen/t_records.cpp"), long_ago);
    EXPECT_NE(fs::last_write_time(folder / "gen/t_tables_1.cpp"), long_ago);
    EXPECT_EQ(files_made(), 6u);
}

TEST_F(Command, ReportsAllErrorsOfTheModulesAndWritesNothing) {
    std::string module =
        write("m.asn1", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\nA ::= Missing\nB ::= Absent\nEND\n");
    EXPECT_EQ(run(compile(module)), 1);
    EXPECT_NE(read("err").find("m.asn1:2:"), std::string::npos) << read("err");
    EXPECT_NE(read("err").find("m.asn1:3:"), std::string::npos) << read("err");
    EXPECT_EQ(files_made(), 0u);
    EXPECT_EQ(run(compile((folder / "none.asn1").string())), 1);
    EXPECT_EQ(read("err"), "error: cannot read '" + (folder / "none.asn1").string() + "'\n");
    EXPECT_EQ(run(compile(folder.string())), 1);
    EXPECT_EQ(read("err"), "error: cannot read '" + folder.string() + "', which is a folder\n");
    EXPECT_EQ(files_made(), 0u);
}

TEST_F(Command, ReportsWhatDoesNotFitTables) {
    std::string module = write(
        "m.asn1", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\nA ::= OCTET STRING (SIZE (4294967296))\nEND\n");
    EXPECT_EQ(run(compile(module)), 1);
    EXPECT_NE(read("err").find("4294967296"), std::string::npos) << read("err");
}

TEST_F(Command, WritesNothingIfOneFileCannotBe) {
    std::string module = write("m.asn1", kGood);
    write("file", "");
    EXPECT_EQ(run("--region T --tables-dir " + (folder / "gen").string() + " --header " +
                  (folder / "file/t.h").string() + " " + module),
              1);
    EXPECT_EQ(files_made(), 0u);
    EXPECT_NE(read("err"), "");
}

TEST_F(Command, TellsBadUsageFromBadModules) {
    std::string module = write("m.asn1", kGood);
    EXPECT_EQ(run("--help"), 0);
    EXPECT_NE(read("out").find("--tables-dir"), std::string::npos);
    EXPECT_EQ(run(module), 2);
    EXPECT_EQ(run("--region 1st " + module), 2);
    EXPECT_EQ(run("--region T"), 2);
    EXPECT_EQ(run("--region T --unknown " + module), 2);
    EXPECT_EQ(run("--region T " + module), 0);  // checks only
}

}  // namespace
