#include "presets/LuaTableParser.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <map>

namespace kelvara {
namespace {

/// Writes a value out: texts in quotes, then positional and keyed entries of tables, keys in order.
std::string written(const LuaValue& value) {
    if (const auto* text = value.string()) return '"' + *text + '"';
    if (const auto* number = value.number()) return fmt::format("{}", *number);
    if (const auto* flag = value.boolean()) return *flag ? "true" : "false";
    const auto* table = value.table();
    if (table == nullptr) return "nil";
    std::string text;
    for (const auto& entry : table->array) text += written(entry) + ' ';
    std::map<std::string, std::string> fields;
    for (const auto& [key, entry] : table->fields) fields.emplace(key, written(entry));
    for (const auto& [key, entry] : fields) text += key + '=' + entry + ' ';
    return '{' + text + '}';
}

std::string parsed(std::string_view text) {
    const auto value = LuaTableParser::parse(text);
    return value ? written(*value) : fmt::format("fails at {}", value.error().offset);
}

struct Row {
    std::string_view text;
    std::string_view result;
};

class LuaTableParserTest : public testing::TestWithParam<Row> {};

TEST_P(LuaTableParserTest, givesTheValueOrThePlaceWhereItStopped) {
    EXPECT_EQ(parsed(GetParam().text), GetParam().result) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(TopLevel, LuaTableParserTest,
                         testing::Values(Row{"s = {}", "{}"}, Row{"{}", "{}"}, Row{" _x9\n=\r\t{}", "{}"},
                                         Row{"s={} return s", "{}"}, Row{"{} }", "{}"}, Row{"", "fails at 0"},
                                         Row{" \n", "fails at 2"}, Row{"-- x", "fails at 4"},
                                         Row{"--\n--y\n5", "5"}, Row{"s", "fails at 1"},
                                         Row{"s == {}", "fails at 3"}, Row{"s =", "fails at 3"},
                                         Row{"s = s = {}", "fails at 5"}, Row{"true", "true"},
                                         Row{"true = nil", "nil"}, Row{"9s = {}", "fails at 0"},
                                         Row{"\xEF\xBB\xBFs = {}", "fails at 0"}, Row{"\v{}", "fails at 0"},
                                         Row{"{\f}", "fails at 1"}, Row{"\xC3\xA9 = {}", "fails at 0"},
                                         Row{"return {}", "fails at 6"}));

INSTANTIATE_TEST_SUITE_P(
    Tables, LuaTableParserTest,
    testing::Values(Row{"{ 1, 2, 3, }", "{1 2 3 }"}, Row{"{ 1; 2 }", "{1 2 }"}, Row{"{ 1 2 }", "fails at 4"},
                    Row{"{1,,2}", "fails at 3"}, Row{"{,}", "fails at 1"}, Row{"{1", "fails at 2"},
                    Row{"{1,", "fails at 3"}, Row{"{ a = 1, b = 2, a = 3 }", "{a=3 b=2 }"},
                    Row{"{ a == 1 }", "fails at 3"}, Row{"{a=", "fails at 3"}, Row{"{ a = }", "fails at 6"},
                    Row{"{ = 1 }", "fails at 2"}, Row{"{ true = 1, nil }", "{nil true=1 }"},
                    Row{"{ true, false, nil }", "{true false nil }"}, Row{"{ x }", "fails at 3"},
                    Row{"{ [1] = \"a\" }", "{1.0=\"a\" }"},
                    Row{"{ [2.5] = 1, [-0.0] = 2, [1e20] = 3, [100000] = 4, [1e-5] = 5 }",
                        "{-0.0=2 100000.0=4 1e+20=3 1e-05=5 2.5=1 }"},
                    Row{"{ [\"Exposure2012\"] = 0.5 }", "{Exposure2012=0.5 }"},
                    Row{"{[ [[k]] ] = 1}", "{k=1 }"}, Row{"{ [true] = 1 }", "fails at 12"},
                    Row{"{ [{}] = 1 , }", "fails at 10"}, Row{"{ [nil] = [[x]] }", "fails at 15"},
                    Row{"{ [1 = 2 }", "fails at 5"}, Row{"{ [1] 2 }", "fails at 6"}, Row{"{[", "fails at 2"},
                    Row{"{[1]", "fails at 4"}, Row{"{ [[x]], [=[y]=] }", "{\"x\" \"y\" }"},
                    Row{"{ a = { 1, { b = {} } } }", "{a={1 {b={} } } }"},
                    Row{"{ a -- x\n = -- y\n 1 -- z\n }", "{a=1 }"},
                    Row{"{ --[[ a = 1,\n b = 2 ]] }", "fails at 21"}, Row{"{\r\n\ta = 1,\r\n}\r\n", "{a=1 }"},
                    Row{"{ a = ZSTR \"$$$/x=y\" }", "fails at 10"}, Row{"{ a.b = 1 }", "fails at 3"}));

INSTANTIATE_TEST_SUITE_P(
    Strings, LuaTableParserTest,
    testing::Values(Row{R"("it\'s")", "\"it's\""}, Row{R"('say "x"')", "\"say \"x\"\""},
                    Row{R"("\65\066\0651\n\t\r\\\a\x")", "\"AB\x41\x31\n\t\r\\ax\""},
                    Row{R"("\300")", "\",\""}, Row{R"("\999")", "\"\xEF\xBF\xBD\""},
                    Row{R"("\195\169")", "\"\xC3\xA9\""}, // 999 is 231
                    Row{"\"a\r\nb\"", "\"a\r\nb\""}, Row{"\"abc", "fails at 4"}, Row{"'", "fails at 1"},
                    Row{"\"a\\", "fails at 3"}, Row{"\"a\\\"", "fails at 4"}, Row{"\"a\\1", "fails at 4"},
                    Row{"\"\xFF\"", "\"\xEF\xBF\xBD\""}, Row{"[==[ a ]] b ]==]", "\" a ]] b \""},
                    Row{"[[\n\\n]]", "\"\n\\n\""}, Row{"[[a]=]]", "\"a]=\""}, Row{"[=[a]==]]=]", "\"a]==]\""},
                    Row{"[[a", "fails at 0"}, Row{" [=[a]]", "fails at 1"}, Row{" [==", "fails at 1"},
                    Row{"[=x", "fails at 0"}, Row{"[", "fails at 0"}));

INSTANTIATE_TEST_SUITE_P(
    Numbers, LuaTableParserTest,
    testing::Values(Row{"-.5", "-0.5"}, Row{"+3", "3"}, Row{"0x10", "16"}, Row{"0x1p4", "16"},
                    Row{"1e-3", "0.001"}, Row{"2E+5", "200000"}, Row{"5.", "5"}, Row{"+inf", "inf"},
                    Row{"-nan", "-nan"}, Row{"1e999", "inf"}, Row{"{ 1e }", "fails at 2"},
                    Row{"1.2.3", "fails at 0"}, Row{"12abc", "fails at 0"}, Row{" -", "fails at 1"},
                    Row{".", "fails at 0"}, Row{"+-3", "fails at 0"}, Row{"1,5", "1"}, Row{"0.1", "0.1"},
                    Row{"inf", "fails at 3"}, Row{"- 3", "fails at 0"}, Row{"{1-- x\n}", "fails at 1"}));

TEST(LuaTableParserTest, deepNestingIsAnErrorAndNotACrash) {
    const std::string opened(1'000'000, '{');
    EXPECT_FALSE(LuaTableParser::parse(opened).hasValue());
    EXPECT_FALSE(LuaTableParser::parse(opened + std::string(opened.size(), '}')).hasValue());
    std::string keys;
    for (int i = 0; i < 500'000; ++i) keys += "{[";
    EXPECT_FALSE(LuaTableParser::parse(keys).hasValue());
    EXPECT_EQ(parsed(std::string(100, '{') + std::string(100, '}')).size(), 299U);
}

TEST(LuaTableParserTest, aWideTableIsNoProblem) {
    std::string text = "{";
    for (int i = 0; i < 100'000; ++i) text += "{},";
    const auto value = LuaTableParser::parse(text + "}");
    ASSERT_TRUE(value.hasValue());
    EXPECT_EQ(value->table()->array.size(), 100'000U);
}

TEST(LuaTableParserTest, theErrorNamesTheOffset) {
    EXPECT_EQ(message(LuaTableParser::ParseError{1234567}), "Unexpected character at offset 1234567.");
}

} // namespace
} // namespace kelvara
