#include "logging/DDLogFileFormatterDefault.h"

#include "logging/DDLogMessage.h"

DDLogFileFormatterDefault::DDLogFileFormatterDefault()
    : dateFormatter_("yyyy/MM/dd HH:mm:ss:SSS", foundation::TimeZone::local) {}

std::optional<std::string> DDLogFileFormatterDefault::formatLogMessage(
    const DDLogMessage& message) {
  std::string text;
  appendLogMessage(text, message);
  return text;
}

bool DDLogFileFormatterDefault::appendLogMessage(std::string& text, const DDLogMessage& message) {
  dateFormatter_.appendStringFromDate(text, message.timestamp());
  text += "  ";
  text += message.logMsg();
  return true;
}
