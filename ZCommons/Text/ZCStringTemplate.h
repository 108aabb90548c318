#pragma once

#include <concepts>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ZCommons/Text/StringTemplatePart.h"
#include "foundation/Data.h"
#include "foundation/NullableText.h"

/// A dictionary from name to `Value` that a view of the name can search: a `std::map` with
/// `std::less<>`, say, or a `std::unordered_map` with a transparent hash and comparison.
template <class Dictionary, class Value>
concept StringTemplateDictionary = requires(const Dictionary& dictionary, std::string_view name) {
  { dictionary.find(name) == dictionary.end() } -> std::convertible_to<bool>;
  { dictionary.find(name)->second } -> std::convertible_to<Value>;
};

/// A text with named placeholders, parsed once and filled as often as needed.
///
/// A placeholder is "${name}", the name one or more ASCII letters and digits; everything else is
/// literal, also what only looks like a placeholder ("${}", "${first_name}", "${open"). Names are
/// case-sensitive. A parameter that is missing leaves nothing in the result. Texts and bytes are
/// copied as they are, ill-formed UTF-8 included.
///
/// Immutable; any number of threads may fill one template at once.
///
///     const auto greeting = ZCStringTemplate::initWithString("Hello ${name}!");
///     greeting->stringFromTemplateWithParameters({{"name", "World"}});   // Hello World!
class ZCStringTemplate {
 public:
  using Strings = std::map<std::string, std::string, std::less<>>;
  using Bytes = std::map<std::string, foundation::Data, std::less<>>;

  /// initWithString:
  ///
  /// Parses `text`, in time that grows with its length, whatever it holds. Nothing for a null or
  /// empty one.
  static std::optional<ZCStringTemplate> initWithString(foundation::NullableText text);

  /// The parts in the order of the text; no literal is empty and no two literals are neighbours.
  const std::vector<StringTemplatePart>& parts() const { return parts_; }

  /// stringFromTemplateWithParameters:
  ///
  /// The text with each placeholder replaced by the text that `parameters` has under its name.
  template <StringTemplateDictionary<std::string_view> Dictionary = Strings>
  std::string stringFromTemplateWithParameters(const Dictionary& parameters) const {
    std::string result;
    result.reserve(usualLength_);
    for (const StringTemplatePart& part : parts_) {
      if (!part.parameterName()) {
        result += *part.stringPart();
      } else if (const auto found = find(parameters, part); found != parameters.end()) {
        result += std::string_view(found->second);
      }
    }
    return result;
  }

  /// dataFromTemplateWithParameters:
  ///
  /// The literals' bytes, with each placeholder replaced by the bytes that `parameters` has under
  /// its name.
  template <StringTemplateDictionary<foundation::DataView> Dictionary = Bytes>
  foundation::Data dataFromTemplateWithParameters(const Dictionary& parameters) const {
    foundation::Data result;
    result.reserve(usualLength_);
    for (const StringTemplatePart& part : parts_) {
      if (!part.parameterName()) {
        append(result, *part.stringPartData());
      } else if (const auto found = find(parameters, part); found != parameters.end()) {
        append(result, found->second);
      }
    }
    return result;
  }

 private:
  ZCStringTemplate() = default;

  template <class Dictionary>
  static auto find(const Dictionary& parameters, const StringTemplatePart& placeholder) {
    return parameters.find(std::string_view(*placeholder.parameterName()));
  }

  static void append(foundation::Data& result, foundation::DataView bytes) {
    result.insert(result.end(), bytes.begin(), bytes.end());
  }

  void addLiteral(std::string_view text);
  void addPlaceholder(std::string_view name);

  std::vector<StringTemplatePart> parts_;
  std::size_t usualLength_ = 0;  // room for the literals and for values of some length
};
