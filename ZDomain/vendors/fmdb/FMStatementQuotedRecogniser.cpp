#include "ZDomain/vendors/fmdb/FMStatementQuotedRecogniser.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "foundation/StringEncoding.h"
#include "foundation/Unicode.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"
#include "platform/Console.h"

using foundation::NullableText;

namespace {

std::uint64_t saturatingSum(std::uint64_t a, std::uint64_t b) {
  constexpr auto limit = std::numeric_limits<std::uint64_t>::max();
  return b > limit - a ? limit : a + b;
}

// False when something else than a text stands under `key`; what is not there leaves `text` as is.
template <class Text>
bool decodeText(foundation::ArchiveReader& coder, std::string_view key, Text& text) {
  const std::optional<foundation::Value> value = coder.decodeObjectForKey(key);
  if (!value || value->isNull()) return true;
  const auto* found = value->as<std::string>();
  if (found) text = *found;
  return found != nullptr;
}

std::uint64_t decodeLength(const foundation::ArchiveReader& coder, std::string_view key) {
  try {
    return static_cast<std::uint64_t>(coder.decodeIntegerForKey(key));
  } catch (const foundation::NSRangeException&) {
    platform::Console::log(
        "Warning, value for maximum length too long for this platform, allowing infinite lengths");
    return FMStatementQuotedRecogniser::noLimit;
  }
}

}  // namespace

FMStatementQuotedRecogniser::FMStatementQuotedRecogniser(std::string startQuote,
                                                         std::string endQuote,
                                                         NullableText escapeSequence,
                                                         std::uint64_t maximumLength,
                                                         std::string name)
    : startQuote_(std::move(startQuote)),
      endQuote_(std::move(endQuote)),
      maximumLength_(maximumLength),
      name_(std::move(name)) {
  if (!escapeSequence.isNull()) escapeSequence_ = escapeSequence.string();
}

std::shared_ptr<FMStatementQuotedRecogniser>
FMStatementQuotedRecogniser::quotedRecogniserWithStartQuote(std::string startQuote,
                                                            std::string endQuote,
                                                            std::string name) {
  return quotedRecogniserWithStartQuote(std::move(startQuote), std::move(endQuote), nullptr,
                                        noLimit, std::move(name));
}

std::shared_ptr<FMStatementQuotedRecogniser>
FMStatementQuotedRecogniser::quotedRecogniserWithStartQuote(std::string startQuote,
                                                            std::string endQuote,
                                                            NullableText escapeSequence,
                                                            std::string name) {
  return quotedRecogniserWithStartQuote(std::move(startQuote), std::move(endQuote), escapeSequence,
                                        noLimit, std::move(name));
}

std::shared_ptr<FMStatementQuotedRecogniser>
FMStatementQuotedRecogniser::quotedRecogniserWithStartQuote(std::string startQuote,
                                                            std::string endQuote,
                                                            NullableText escapeSequence,
                                                            std::uint64_t maximumLength,
                                                            std::string name) {
  return std::make_shared<FMStatementQuotedRecogniser>(
      std::move(startQuote), std::move(endQuote), escapeSequence, maximumLength, std::move(name));
}

std::uint64_t FMStatementQuotedRecogniser::minWithLeftParam(std::uint64_t leftParam,
                                                            std::uint64_t rightParam) {
  return std::min(leftParam, rightParam);
}

std::string_view FMStatementQuotedRecogniser::searchedPart(std::string_view text,
                                                           std::size_t position) const {
  const std::string_view rest = text.substr(position);
  const std::uint64_t quotes =
      foundation::UTF16Length(startQuote_) + foundation::UTF16Length(endQuote_);
  const std::uint64_t units = minWithLeftParam(rest.size(), saturatingSum(quotes, maximumLength_));
  return text.substr(0, position + prefix(rest, units).size());
}

// The place of the first escape sequence that begins before the end quote at `end`.
std::size_t FMStatementQuotedRecogniser::escapeBefore(std::string_view text, std::size_t from,
                                                      std::size_t end) const {
  if (!escapeSequence_ || escapeSequence_->empty()) return std::string_view::npos;
  return text.substr(0, end + escapeSequence_->size() - 1).find(*escapeSequence_, from);
}

void FMStatementQuotedRecogniser::appendEscaped(std::string& content, std::string_view text,
                                                std::size_t position, std::size_t length) const {
  if (shouldQuoteEscapeSequence_) content += *escapeSequence_;
  std::optional<std::string> replacement;
  if (escapeReplacer_) replacement = escapeReplacer_(text, position);
  content += replacement ? std::string_view(*replacement) : text.substr(position, length);
}

// Takes a whole character after an escape: the rest of one never looks like a quote, so the token
// ends where it would if only the first UTF-16 unit were taken.
FMStatementRecogniser::Range FMStatementQuotedRecogniser::recognise(std::string_view text,
                                                                    std::size_t& position,
                                                                    std::string* content) const {
  if (position >= text.size() || startQuote_.empty() || endQuote_.empty()) return {};
  const std::string_view searched = searchedPart(text, position);
  if (!searched.substr(position).starts_with(startQuote_)) return {};
  std::size_t scan = position + startQuote_.size();
  std::size_t end = searched.find(endQuote_, scan);
  while (end != std::string_view::npos) {
    const std::size_t escape = escapeBefore(searched, scan, end);
    if (content) content->append(text, scan, std::min(escape, end) - scan);
    if (escape == std::string_view::npos) {
      const std::size_t start = std::exchange(position, end + endQuote_.size());
      return {start, position - start};
    }
    const std::size_t escaped = escape + escapeSequence_->size();
    if (escaped >= searched.size()) break;
    const std::size_t length = foundation::firstCharacter(text.substr(escaped)).length;
    if (content) appendEscaped(*content, text, escaped, length);
    scan = escaped + length;
    if (end < scan) end = searched.find(endQuote_, scan);
  }
  return {};
}

bool FMStatementQuotedRecogniser::initWithCoder(foundation::ArchiveReader& coder) {
  if (!decodeText(coder, "Q.s", startQuote_) || !decodeText(coder, "Q.e", endQuote_) ||
      !decodeText(coder, "Q.es", escapeSequence_) || !decodeText(coder, "Q.n", name_)) {
    return false;
  }
  maximumLength_ = decodeLength(coder, "Q.m");
  return true;
}

void FMStatementQuotedRecogniser::encodeWithCoder(foundation::ArchiveWriter& coder) const {
  if (escapeReplacer_) {
    platform::Console::log(
        "Warning: encoding CPQuoteRecogniser with an escapeReplacer set.  This will not be "
        "recreated when decoded.");
  }
  std::optional<foundation::Value> escapeSequence;
  if (escapeSequence_) escapeSequence = *escapeSequence_;
  coder.encodeObject(startQuote_, "Q.s");
  coder.encodeObject(endQuote_, "Q.e");
  coder.encodeObject(escapeSequence, "Q.es");
  coder.encodeInteger(static_cast<std::int64_t>(maximumLength_), "Q.m");
  coder.encodeObject(name_, "Q.n");
}
