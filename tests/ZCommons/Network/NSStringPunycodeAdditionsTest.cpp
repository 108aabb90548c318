#include <random>

#include <gtest/gtest.h>

#include "ZCommons/Network/NSStringPunycodeAdditions.h"
#include "fuzz/PlainPunycode.h"

using namespace NSStringPunycodeAdditions;
using namespace std::string_literals;
using fuzz::PlainPunycode;

TEST(NSStringPunycodeAdditions, EncodesAndDecodesLabels) {
  // Some of the samples of RFC 3492, section 7.1, are among them.
  const std::pair<std::string, const char*> rows[] = {
      {"", ""},
      {"abc", "abc-"},
      {"b\u00FCcher", "bcher-kva"},
      {"\u4ED6\u4EEC\u4E3A\u4EC0\u4E48\u4E0D\u8BF4\u4E2D\u6587", "ihqwcrb4cv8a8dqg056pqjye"},
      {"-> $1.00 <-", "-> $1.00 <--"},
      {"\U0001F600\u00FC\U0001F600", "tda3367wba"}};
  for (const auto& [label, punycode] : rows) {
    EXPECT_EQ(punycodeEncodedString(label), punycode);
    EXPECT_EQ(punycodeDecodedString(punycode), label);
  }
  EXPECT_EQ(punycodeEncodedString("a\xFF"), punycodeEncodedString("a\uFFFD"));
  EXPECT_EQ(punycodeDecodedString("bcher-KVA"), "b\u00FCcher");
}

TEST(NSStringPunycodeAdditions, GivesNothingForWhatIsNoPunycode) {
  const std::string surrogate = *PlainPunycode::encode(U"\xD800");
  const std::string tooGreat = *PlainPunycode::encode(U"\x10FFFF") + "b";
  for (const std::string& row : {"abc-!"s, "\u00FC-kva"s, "-"s, "-kva"s, "bcher-kv"s, "a-\0"s,
                                 "99999999999"s, surrogate, tooGreat}) {
    EXPECT_EQ(punycodeDecodedString(row), std::nullopt) << row;
  }
  EXPECT_EQ(punycodeEncodedString(std::string(4000, 'a') + "\U0010FFFF"), std::nullopt);
}

TEST(NSStringPunycodeAdditions, AgreesWithThePlainLoops) {
  std::mt19937 random(1);
  const char32_t limits[] = {0x7F, 0x100, 0x2FF, 0xD7FF, 0x10FFFF};
  const std::string letters = "abcyzABYZ0189-!";
  for (int i = 0; i < 4000; ++i) {
    std::u32string label;
    for (auto count = random() % (i % 40 == 0 ? 700 : 12); count > 0; --count) {
      const auto c = static_cast<char32_t>(random() % limits[random() % 5]);
      label += c >= 0xD800 && c < 0xE000 ? U'x' : c;
    }
    const std::string text = *foundation::UTF8FromUTF32(label);
    const auto punycode = punycodeEncodedString(text);
    ASSERT_EQ(punycode, PlainPunycode::encode(label)) << text;
    ASSERT_EQ(punycodeDecodedString(*punycode), text);
    std::string noise = i % 2 ? *punycode : "";
    for (auto count = random() % 9; count > 0; --count) noise += letters[random() % 15];
    ASSERT_EQ(punycodeDecodedString(noise), PlainPunycode::decode(noise)) << noise;
  }
}

TEST(NSStringPunycodeAdditions, IsQuickForLabelsOfAnyKind) {
  // Each of the many different code points goes in front of all that are there already.
  std::u32string label;
  for (char32_t c = 0x4FFFF; c > 0x80; --c) label += c >= 0xD800 && c < 0xE000 ? U'a' : c;
  const std::string text = *foundation::UTF8FromUTF32(label);
  EXPECT_EQ(punycodeDecodedString(punycodeEncodedString(text).value_or("")), text);
  const std::string digits(1'000'000, 'a');
  EXPECT_EQ(punycodeDecodedString(digits)->size(), 2 * digits.size());
  std::string spaced;
  for (int i = 0; i < 1'000'000; ++i) spaced += ".\u00A0";
  EXPECT_TRUE(IDNADecodedString(spaced) == std::string(1'000'000, '.'));
  EXPECT_TRUE(encodedURLString(spaced + "\u00FC") == std::string(1'000'000, '.') + "xn--tda");
}

TEST(NSStringPunycodeAdditions, ConvertsHostsLabelByLabel) {
  // clang-format off
  const std::pair<std::string, std::string> encoded[] = {
      {"B\u00FCcher.Example.COM", "xn--Bcher-kva.Example.COM"},
      {"j\u00FCrgen@b\u00FCcher.example..", "xn--jrgen-kva@xn--bcher-kva.example.."},
      {"\uFF21\uFF0E\uFB00", "A.ff"},
      {"bu\u0308cher\u3002a", "xn--bchera-3ya2247g"},
      {" a . \u0085\u2028b \n", "a .b \n"},
      {"", ""}, {" . \t. ", ".."}, {"a\0b"s, "xn--a\0b-"s}, {"\x7F.\u0080", "\x7F.xn--a"},
      {"a." + std::string(4000, 'a') + "\U0010FFFF.b", "a.xn--(null).b"}};
  for (const auto& [host, result] : encoded) EXPECT_EQ(IDNAEncodedString(host), result) << host;
  const std::pair<std::string, std::string> decoded[] = {
      {"XN--bcher-kva.example@Xn--tda", "b\u00FCcher.example@\u00FC"}, {"a.xn--!.b", "a..b"},
      {"xn--.xn-tda.axn--tda", ".xn-tda.axn--tda"}, {"xn--abc- . \uFF21\xFF", ".\uFF21\xFF"}};
  // clang-format on
  for (const auto& [host, result] : decoded) EXPECT_EQ(IDNADecodedString(host), result) << host;
}

TEST(NSStringPunycodeAdditions, CutsURLsIntoParts) {
  const std::optional<std::string> none;
  const std::pair<std::string, Parts> rows[] = {
      {"", {}},
      {"http://h:80/p?q#f g", {"http", "://", "h", ":80/p?q", none, none, "f g"}},
      {" a/b#", {"", "", "a", "/b", none, none, none}},
      {"http://u:p@h/", {"http", "://", "u", ":p@h/", none, none, none}},
      {"http://u@@h@x", {"http", "://", "h", "", "u", none, none}},
      {"http://@h", {"http", "://", "h", "", none, none, none}},
      {"http:// \n", {"http", "://", "http", "", none, none, none}},
      {"://h", {"", "", "", "://h", none, none, none}},
      {"h#f", {"", "", "h#f", "", none, none, none}},
      {"h/#\n f\u2028g", {"", "", "h", "/", none, none, "f"}},
      {"http\uFF1A//h", {"", "", "http", "://h", none, none, none}},
      // Composed to one code point, the colon is looked for one unit too early.
      {"e\u0301:x", {"", "", "\u00E9", ":x", none, none, none}},
      // Decomposed to two, it is looked for behind the end.
      {"\uFB00:", {"", "", "ff", ":", none, none, none}},
      {"\U0001F600:x", {"\U0001F600", ":", "x", "", none, none, none}},
      {"h/\xFF", {"", "", "h", "/\uFFFD", none, none, none}}};
  for (const auto& [text, parts] : rows) EXPECT_EQ(URLParts(text), parts) << text;
}

TEST(NSStringPunycodeAdditions, SplitsHostsFromElsewhere) {
  Parts parts{"", "", "u:p@h", "", {}, {}, {}};
  splitHost(parts);
  EXPECT_EQ(parts, (Parts{"", "", "h", "", "u", "p", {}}));
  const Parts withPort{"", "", "h:80", "", {}, {}, {}};
  splitHost(parts = withPort);
  EXPECT_EQ(parts, withPort);
}

TEST(NSStringPunycodeAdditions, ConvertsURLs) {
  const std::tuple<const char*, const char*, const char*> rows[] = {
      {"http://u@b\u00FCcher.example:8080/a b%20[\u00FC]#\u00FC",
       "http://u@xn--bcher-kva.example:8080/a%20b%20%5B%C3%BC%5D#\u00FC",
       "http://b\u00FCcher.example:8080/a b [\u00FC]#\u00FC"},
      {"http://xn--bcher-kva/%FF", "http://xn--bcher-kva/%FF", "http://b\u00FCcher(null)"},
      {"h/a%", "h/a%", "h(null)"}};
  for (const auto& [text, encoded, decoded] : rows) {
    EXPECT_EQ(encodedURLString(text), encoded);
    EXPECT_EQ(decodedURLString(encoded), decoded);
  }
}
