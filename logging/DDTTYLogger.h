#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/DateFormatter.h"
#include "foundation/Value.h"
#include "logging/DDAbstractLogger.h"
#include "logging/DDTTYColor.h"
#include "logging/DDTTYLoggerColorProfile.h"

/// Writes messages to the standard error stream, in colours where they are enabled and the terminal
/// shows them.
///
/// A line is the local time, the program's name, its process and thread, and the text:
/// "2024-03-09 14:05:07:123 program[4711:1267] text". What a formatter has made of a message is
/// written as it is. Each line is one gathered write, so lines stay whole when others write there.
///
/// Thread safety: any thread. What is set takes effect after the messages logged before.
///
///     DDTTYLogger::sharedInstance()->setColorsEnabled(true);
///     DDLog::addLogger(DDTTYLogger::sharedInstance());
class DDTTYLogger final : public DDAbstractLogger {
 public:
  /// The one there is.
  static const std::shared_ptr<DDTTYLogger>& sharedInstance();

  explicit DDTTYLogger(Key);

  /// Whether lines are coloured; false at first. Waits for the logging queue, then the logger's.
  bool colorsEnabled();

  /// Without any profile, enabling sets the default ones: errors in red, warnings in orange.
  void setColorsEnabled(bool enabled);

  /// setForegroundColor:backgroundColor:forFlag:[context:]
  ///
  /// Colours the messages whose flag is in `mask` and whose context is `context`
  /// (`DDTTYLoggerColorProfile::anyContext` for those that have no profile of their own). Replaces
  /// the profile of the same mask and context. Nothing for a colour leaves the terminal's.
  void setForegroundColor(std::optional<DDColor> foreground, std::optional<DDColor> background,
                          std::uint32_t mask, std::int32_t context = 0);

  /// setForegroundColor:backgroundColor:forTag:
  ///
  /// Colours the messages of a tag (compared by `isEqual`), whatever their flag. Null is ignored.
  void setForegroundColorForTag(std::optional<DDColor> foreground,
                                std::optional<DDColor> background,
                                std::shared_ptr<foundation::Object> tag);

  /// clearColorsForFlag:[context:]
  ///
  /// Forgets the profile of this very mask and context.
  void clearColorsForFlag(std::uint32_t mask, std::int32_t context = 0);

  /// Forget the profile of a tag (null is ignored), or all profiles of a kind.
  void clearColorsForTag(std::shared_ptr<foundation::Object> tag);
  void clearColorsForAllFlags();
  void clearColorsForAllTags();
  void clearAllColors();

  void logMessage(const DDLogMessage& message) override;

  /// "cocoa.quillwort.ttyLogger"
  std::optional<std::string> loggerName() override;

 private:
  using Profile = DDTTYLoggerColorProfile;
  using Tag = std::shared_ptr<foundation::Object>;

  template <class F>
  void change(F step);

  void setProfile(Profile profile);
  void forgetTag(const foundation::Object& tag);
  const Profile* profileFor(const DDLogMessage& message) const;
  void appendPrefix(const DDLogMessage& message);

  const foundation::DateFormatter dateFormatter_;
  const std::string origin_;  // " program[4711:"

  // Touched on the logger's queue.
  bool colorsEnabled_ = false;
  std::vector<Profile> colorProfilesArray_;
  std::vector<std::pair<Tag, Profile>> colorProfilesDict_;
  std::string text_;  // what the formatter made; the next two are kept for their storage too
  std::string prefix_;
};
