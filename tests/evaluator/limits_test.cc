// Texts of any shape and size get an answer or a diagnostic, soon.
#include <sys/resource.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <vector>

#include "tests/evaluator/test_vocabulary.h"

namespace {

TEST(Limits, NestingBeyond256LevelsIsRefused) {
  struct {
    char const *before, *inside, *behind, *answer;
  } const nests[] = {
      {"(", "1", ")", "1"},
      {"not ", "true", "", nullptr},
      {"- ", "build number", "", nullptr},
      {"exists ", "build number", "", "true"},
      {"say (", "\"a\"", ")", "a"},
      {"if true then ", "1", " else 2", "1"},
      {"if true then 1 else ", "2", "", "1"},
      {"1 of ", "2", "", "1"},
      {"1 whose (", "true", " )", nullptr},
      {"number of ", "shelves", "", nullptr},
      {"(1, ", "2", ")", nullptr},
  };
  for (auto const& nest : nests) {
    auto const nested = [&](std::size_t depth) {
      return Repeat(nest.before, depth) + nest.inside + Repeat(nest.behind, depth);
    };
    if (nest.answer != nullptr) {
      EXPECT_EQ(Answer(nested(256)), nest.answer) << nest.before;
    }
    for (std::size_t const depth : {257, 5000, 20000}) {
      auto const diagnostics = gatotu::Check(nested(depth));
      ASSERT_FALSE(diagnostics.empty()) << nest.before << depth;
      EXPECT_EQ(diagnostics[0].code, "nesting-too-deep") << nest.before << depth;
      EXPECT_LE(diagnostics.size(), 20u);
    }
  }
}

TEST(Limits, ChainsOfOneOperatorAreNotDeep) {
  EXPECT_EQ(Answer("0" + Repeat(" + 1", 200)), "200");
  EXPECT_EQ(Answer("1" + Repeat(";1", 20000)), "1" + Repeat("|1", 20000));
  for (char const* link : {" + 1", " and true", " or true", ",1", ";1", " | 1", " = 1", " & 1",
                           " of shelf", " as string", " whose (true)", " 1", "("}) {
    std::string const text = "1" + Repeat(link, 50000);
    auto const compilation = gatotu::Compile(text);
    if (compilation.expression != nullptr) AnswerOf(*compilation.expression);
    EXPECT_LE(compilation.diagnostics.size(), 20u) << link;
  }
}

TEST(Limits, ChainsWithinChainsDoNotAddUp) {
  for (char const* link : {" + 1", " - build number", " as string as integer", " | 1", ";1"}) {
    std::string text = "1";
    for (int i = 0; i < 100; ++i) text = "(" + text + ")" + Repeat(link, 400);
    auto const compilation = gatotu::Compile(text);
    if (compilation.expression != nullptr) {
      AnswerOf(*compilation.expression);
    } else {
      EXPECT_EQ(compilation.diagnostics[0].code, "chain-too-long") << link;
    }
  }
  EXPECT_EQ(Answer("(1" + Repeat(" + 1", 900) + ") + (1" + Repeat(" + 1", 900) + ")"), "1802");
}

TEST(Limits, TextsOverOneMebibyteAreRefused) {
  std::size_t const most = 1 << 20;
  EXPECT_EQ(Answer("1" + std::string(most - 1, ' ')), "1");
  EXPECT_EQ(Answer("1" + std::string(most, ' ')), "?text-too-long");
  EXPECT_EQ(Answer("\"" + std::string(most - 2, 'x') + "\"").size(), most - 2);
  EXPECT_EQ(Answer(std::string(most, 'x')), "?unknown-property");
  EXPECT_EQ(Answer(std::string(most, '9')), "?integer-too-large");
  EXPECT_EQ(gatotu::Check("x" + Repeat("; y", 100)).size(), 20u) << "and mistakes beyond twenty";
}

TEST(Limits, EveryByteAloneAndInPlacesIsAnswered) {
  for (int byte = 0; byte < 256; ++byte) {
    std::string const one(1, static_cast<char>(byte));
    for (auto const& text : {one, "1" + one, "label" + one + "of", one + one, "\"" + one,
                             "\"\\" + one + "\"", "\"\\x" + one + "0\"", "1 + " + one + " + 2"}) {
      auto const compilation = gatotu::Compile(text);
      EXPECT_EQ(compilation.expression != nullptr, compilation.diagnostics.empty()) << byte;
      for (auto const& diagnostic : compilation.diagnostics) {
        auto const rendered = gatotu::Render(diagnostic, text);
        EXPECT_EQ(rendered.find_first_of(std::string_view("\0\x1b\r\x07\x7f", 5)),
                  std::string::npos)
            << byte;
      }
    }
    if (byte != '"' && byte != '\\' && byte != '\n') {
      EXPECT_EQ(Answer('"' + one + '"'), one) << byte;
    }
  }
  EXPECT_EQ(Answer(std::string_view("\"a\0b\"", 5)), std::string_view("a\0b", 3));
}

TEST(Limits, AStreamOfAnyLengthTakesConstantMemory) {
  auto const used = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  };
  EXPECT_EQ(Answer("number of bulkies 10"), "10");
  auto const before = used();
  EXPECT_EQ(Answer("number of bulkies 20000"), "20000");
  EXPECT_EQ(Answer("number of bulkies 20000 whose (it & it & \"x\" contains \"x\")"), "20000");
  EXPECT_EQ(Answer("maximum of (it & \"x\") of bulkies 20000"), "bulkx");
  EXPECT_EQ(Answer("last of bulkies 20000"), "bulk");
  EXPECT_EQ(Answer("number of unique values of bulkies 20000"), "1");
  EXPECT_LT(used() - before, 32 * 1024) << "KiB; what is not given back would be 80 MiB each";
}

TEST(Limits, WhatAnAggregateKeepsIsBounded) {
  std::string const kilobyte(1024, '-');
  for (std::string const& text : {"concatenation \"" + kilobyte + "\" of (it as string) of counts ",
                                  std::string("number of unique values of counts ")}) {
    EXPECT_EQ(Answer(text + "10000000"), "!too-much-memory") << text;
    EXPECT_NE(Answer(text + "1000"), "!too-much-memory") << text;
  }
}

// Tokens in a random order, mostly nonsense; a fixed seed, so that a failure comes back.
TEST(Limits, RandomTokensAreAnswered) {
  std::istringstream words(
      "of of whose ( ) it as and or not if then else is exists true false number unique_values sum "
      "first last maximum concatenation item_0 1 2 \"a\" ; , | + - * & = < >= contains starts_with "
      "shelf_2 shelves books book labels label weight page_counts twins fail_0 counts_2 string "
      "integer whose_(it_=_1) of_it (it)_of");
  std::vector<std::string> tokens;
  for (std::string token; words >> token; tokens.push_back(token)) {
    std::replace(token.begin(), token.end(), '_', ' ');
  }
  std::mt19937 random(20);
  std::size_t understood = 0;
  for (int round = 0; round < 100000; ++round) {
    std::string text;
    for (auto left = random() % 9 + 1; left > 0; --left) {
      text += tokens[random() % tokens.size()] + ' ';
    }
    auto const compilation = gatotu::Compile(text, gatotu::Purpose::kUse);
    ASSERT_EQ(compilation.expression != nullptr, compilation.diagnostics.empty()) << text;
    if (compilation.expression == nullptr) continue;
    ++understood;
    compilation.expression->Explain();
    AnswerOf(*compilation.expression);
    ASSERT_FALSE(testing::Test::HasFailure()) << text;
  }
  EXPECT_GT(understood, 1000u);
}

}  // namespace
