// SPDX-License-Identifier: Apache-2.0
#include <cli/arguments.h>

#include <cli/failure.h>

#include <functional>

#include <gtest/gtest.h>

namespace NVORNQDX20 {
namespace {

using TWords = std::vector<std::string>;

const std::vector<TOptionSpec> kOptions = {
    {"json", nullptr, ""}, {"root", "DIR", "", 'r'}, {"quiet", nullptr, "", 'q'}};

/// "option=value" and "operand" in angle brackets; options in the order of their names.
std::string TextOf(const TArguments& arguments) {
  std::string text;
  for (const auto& [option, values] : arguments.fOptions) {
    for (const std::string& value : values) text += "<" + option + "=" + value + ">";
  }
  for (const std::string& operand : arguments.fOperands) text += "<" + operand + ">";
  return text;
}

/// The error line for a mistake in the command line; "" if there is none.
std::string MistakeIn(const std::function<void()>& operation) {
  try {
    operation();
    return "";
  } catch (const TCommandFailure& failure) {
    EXPECT_EQ(failure.GetExitCode(), kExitUsage);
    return failure.what();
  }
}

TEST(Arguments, AreOptionsAndOperands) {
  const std::pair<TWords, std::string> rows[] = {
      // A value joined by "=", joined to a letter, or as the next word, whatever it is.
      {{"--root=/a"}, "<root=/a>"},
      {{"--root=a=b"}, "<root=a=b>"},
      {{"--root", "--json"}, "<root=--json>"},
      {{"-r/a"}, "<root=/a>"},
      {{"-r=/a"}, "<root=/a>"},
      {{"-r", "--"}, "<root=-->"},
      {{"-q", "a"}, "<quiet=><a>"},
      // Options among operands, and more than once; "-" is an operand, and so is all after "--".
      {{"b", "--json", "a", "-ry", "-rx"}, "<json=><root=y><root=x><b><a>"},
      {{"-", ""}, "<-><>"},
      {{"a", "--", "--json", "--", "-r"}, "<a><--json><--><-r>"},
      {{"--"}, ""}};
  for (const auto& [words, text] : rows) {
    EXPECT_EQ(TextOf(ParseArguments(kOptions, words)), text) << ::testing::PrintToString(words);
  }
}

TEST(Arguments, AreRefusedByName) {
  const std::pair<TWords, std::string> rows[] = {
      {{"--jso"}, "--jso"},   {{"--jsons"}, "--jsons"}, {{"--=a"}, "--"},
      {{"-j"}, "-j"},         {{"-json"}, "-j"},        {{"--r=a"}, "--r"},
      {{"--json="}, "json"},  {{"--json=a"}, "json"},   {{"-qa"}, "quiet"},
      {{"a", "-r"}, "DIR"},   {{"--root"}, "DIR"},      {{"--root="}, "DIR"},
      {{"--root", ""}, "DIR"}};
  for (const auto& [words, name] : rows) {
    const std::string mistake = MistakeIn([words = words] { ParseArguments(kOptions, words); });
    EXPECT_NE(mistake.find(name), std::string::npos) << ::testing::PrintToString(words) << mistake;
  }
}

TEST(Arguments, GiveTheLastValueAllOrWhatHoldsWithoutThem) {
  const TArguments arguments = ParseArguments(kOptions, {"-r2", "a", "-r1"});
  EXPECT_EQ(arguments.Get("root", "/"), "1");
  EXPECT_EQ(arguments.GetAll("root"), (TWords{"2", "1"}));
  EXPECT_EQ(arguments.Get("json", "/"), "/");
  EXPECT_EQ(arguments.GetAll("json"), TWords());
  EXPECT_TRUE(arguments.Has("root") && !arguments.Has("json"));
  EXPECT_EQ(arguments.GetOperand(0, "x") + arguments.GetOperand(1, "y") + arguments.GetOperand(2),
            "ay");
}

TEST(Arguments, AreAsManyAsTheVerbTakes) {
  const std::vector<TOperandSpec> specs = {{"FILE"}, {"PATH", TOperandSpec::kOptional}};
  const std::pair<TWords, std::string> rows[] = {
      {{"a"}, ""},         {{"a", "b"}, ""},    {{}, "FILE"},
      {{"", "b"}, "FILE"}, {{"a", ""}, "PATH"}, {{"a", "b", "third"}, "third"}};
  for (const auto& [operands, name] : rows) {
    const std::string mistake =
        MistakeIn([&, given = operands] { CheckOperands("verb", specs, given); });
    EXPECT_EQ(mistake.empty(), name.empty()) << mistake;
    EXPECT_NE(mistake.find(name), std::string::npos) << mistake;
  }
}

}  // namespace
}  // namespace NVORNQDX20
