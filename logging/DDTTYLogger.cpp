#include "logging/DDTTYLogger.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include "foundation/Format.h"
#include "logging/DDLogLevel.h"
#include "logging/DDLogMessage.h"
#include "platform/Bundle.h"
#include "platform/Process.h"
#include "platform/StandardError.h"

namespace {

constexpr std::size_t expectedProfiles = 8;

DDColor colorOf(int red, int green, int blue) { return {red / 255.0, green / 255.0, blue / 255.0}; }

std::string origin() {
  std::string name = platform::Bundle::current().processName();
  if (name.empty()) name = "<UnnamedApp>";
  return foundation::format(" %@[%i:", name, platform::Process::processIdentifier());
}

bool areEqual(const foundation::Object& a, const foundation::Object& b) {
  return &a == &b || a.isEqual(b);
}

}  // namespace

const std::shared_ptr<DDTTYLogger>& DDTTYLogger::sharedInstance() {
  static const auto& logger =
      *new std::shared_ptr<DDTTYLogger>(std::make_shared<DDTTYLogger>(Key()));
  return logger;
}

DDTTYLogger::DDTTYLogger(Key)
    : dateFormatter_("yyyy-MM-dd HH:mm:ss:SSS", foundation::TimeZone::local), origin_(origin()) {
  colorProfilesArray_.reserve(expectedProfiles);
  colorProfilesDict_.reserve(expectedProfiles);
}

std::optional<std::string> DDTTYLogger::loggerName() { return "cocoa.quillwort.ttyLogger"; }

template <class F>
void DDTTYLogger::change(F step) {
  auto self = std::static_pointer_cast<DDTTYLogger>(shared_from_this());
  performOnLoggerQueue(
      [logger = std::move(self), what = std::move(step)]() mutable { what(*logger); });
}

bool DDTTYLogger::colorsEnabled() {
  return waitOnLoggerQueue([this] { return colorsEnabled_; });
}

void DDTTYLogger::setColorsEnabled(bool enabled) {
  change([enabled](DDTTYLogger& logger) {
    logger.colorsEnabled_ = enabled;
    if (!enabled || !logger.colorProfilesArray_.empty() || !logger.colorProfilesDict_.empty()) {
      return;
    }
    logger.setProfile(Profile(colorOf(214, 57, 30), std::nullopt, DDLogFlag::error, 0));
    logger.setProfile(Profile(colorOf(204, 121, 32), std::nullopt, DDLogFlag::warning, 0));
  });
}

void DDTTYLogger::setProfile(Profile profile) {
  const auto same = std::find_if(
      colorProfilesArray_.begin(), colorProfilesArray_.end(), [&](const Profile& existing) {
        return existing.mask() == profile.mask() && existing.context() == profile.context();
      });
  if (same == colorProfilesArray_.end()) {
    colorProfilesArray_.push_back(std::move(profile));
  } else {
    *same = std::move(profile);
  }
}

void DDTTYLogger::setForegroundColor(std::optional<DDColor> foreground,
                                     std::optional<DDColor> background, std::uint32_t mask,
                                     std::int32_t context) {
  change([profile = Profile(foreground, background, mask, context)](DDTTYLogger& logger) {
    logger.setProfile(profile);
  });
}

void DDTTYLogger::setForegroundColorForTag(std::optional<DDColor> foreground,
                                           std::optional<DDColor> background, Tag tag) {
  if (!tag) return;
  change(
      [profile = Profile(foreground, background, 0, 0), key = std::move(tag)](DDTTYLogger& logger) {
        logger.forgetTag(*key);
        logger.colorProfilesDict_.emplace_back(key, profile);
      });
}

void DDTTYLogger::clearColorsForFlag(std::uint32_t mask, std::int32_t context) {
  change([mask, context](DDTTYLogger& logger) {
    std::erase_if(logger.colorProfilesArray_, [&](const Profile& profile) {
      return profile.mask() == mask && profile.context() == context;
    });
  });
}

void DDTTYLogger::forgetTag(const foundation::Object& tag) {
  std::erase_if(colorProfilesDict_, [&](const auto& entry) { return areEqual(*entry.first, tag); });
}

void DDTTYLogger::clearColorsForTag(Tag tag) {
  if (!tag) return;
  change([key = std::move(tag)](DDTTYLogger& logger) { logger.forgetTag(*key); });
}

void DDTTYLogger::clearColorsForAllFlags() {
  change([](DDTTYLogger& logger) { logger.colorProfilesArray_.clear(); });
}

void DDTTYLogger::clearColorsForAllTags() {
  change([](DDTTYLogger& logger) { logger.colorProfilesDict_.clear(); });
}

void DDTTYLogger::clearAllColors() {
  clearColorsForAllFlags();
  clearColorsForAllTags();
}

const DDTTYLoggerColorProfile* DDTTYLogger::profileFor(const DDLogMessage& message) const {
  if (!colorsEnabled_) return nullptr;
  if (message.tag()) {
    for (const auto& [tag, profile] : colorProfilesDict_) {
      if (areEqual(*tag, *message.tag())) return &profile;
    }
  }
  const Profile* any = nullptr;
  for (const Profile& profile : colorProfilesArray_) {
    if ((profile.mask() & message.logFlag()) == 0) continue;
    if (profile.context() == message.logContext()) return &profile;
    if (profile.context() == Profile::anyContext) any = &profile;
  }
  return any;
}

void DDTTYLogger::logMessage(const DDLogMessage& message) {
  text_.clear();
  prefix_.clear();
  std::string_view text = message.logMsg();
  if (formatter()) {
    if (!formatter()->appendLogMessage(text_, message)) return;
    text = text_;
  }
  if (text == message.logMsg()) appendPrefix(message);
  const std::string_view lineEnd = text.ends_with('\n') ? "" : "\n";
  if (const Profile* const profile = profileFor(message)) {
    platform::StandardError::write(
        {profile->fgCode(), profile->bgCode(), prefix_, text, lineEnd, profile->resetCode()});
  } else {
    platform::StandardError::write({prefix_, text, lineEnd});
  }
}

void DDTTYLogger::appendPrefix(const DDLogMessage& message) {
  constexpr std::size_t longestTime = 23;
  dateFormatter_.appendStringFromDate(prefix_, message.timestamp());
  prefix_.resize(std::min(prefix_.size(), longestTime));
  prefix_ += origin_;
  char digits[8];
  const auto [end, error] =
      std::to_chars(std::begin(digits), std::end(digits), message.machThreadID(), 16);
  prefix_.append(digits, end);
  prefix_ += "] ";
}
