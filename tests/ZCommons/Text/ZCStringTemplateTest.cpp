#include <thread>

#include <gtest/gtest.h>

#include "ZCommons/Text/ZCStringTemplate.h"

using foundation::Data, foundation::textOf;

TEST(ZCStringTemplate, IsParsedIntoParts) {
  // Each part in brackets, a placeholder's with a dollar sign.
  const std::pair<const char*, const char*> rows[] = {
      {"Hello ${name}!", "[Hello ][$name][!]"},
      {"${a}${B2}", "[$a][$B2]"},
      {"${} ${a_b} ${é}", "[${} ${a_b} ${é}]"},
      {"$${a}}", "[$][$a][}]"},
      {"${${a${b}", "[${${a][$b]"},
      {"\xff${a}\n${a", "[\xff][$a][\n${a]"},
  };
  for (const auto& [text, expected] : rows) {
    const ZCStringTemplate parsed = ZCStringTemplate::initWithString(text).value();
    std::string parts;
    for (const StringTemplatePart& part : parsed.parts()) {
      parts += '[' + part.stringPart().value_or("$" + part.parameterName().value_or("")) + ']';
    }
    EXPECT_EQ(parts, expected);
  }
  EXPECT_FALSE(ZCStringTemplate::initWithString(""));
  EXPECT_FALSE(ZCStringTemplate::initWithString(nullptr));
  StringTemplatePart part;
  for (const char* text : {"one", "two\xff"}) {
    part.setStringPart(text);
    EXPECT_EQ(textOf(part.stringPartData().value()), text);
  }
}

TEST(ZCStringTemplate, IsFilledBySeveralThreadsFromTheStart) {
  const auto parsed = ZCStringTemplate::initWithString("\xff${a}-${A}-${a}é").value();
  const auto fill = [&parsed] {
    EXPECT_EQ(parsed.stringFromTemplateWithParameters({{"a", "1"}, {"b", "2"}}), "\xff\x31--1é");
    EXPECT_EQ(textOf(parsed.dataFromTemplateWithParameters({{"A", Data{0xfe}}})), "\xff-\xfe-é");
  };
  std::thread other(fill);
  fill();
  other.join();
}
