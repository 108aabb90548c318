#pragma once

#include <optional>
#include <string>

#include "foundation/Data.h"
#include "foundation/NullableText.h"

/// One piece of a parsed template: a literal, or a placeholder for a named parameter.
///
/// Thread safety: any number of threads may read a part that nobody changes.
class StringTemplatePart {
 public:
  /// A part without text and without name.
  StringTemplatePart() = default;

  /// The text of a literal; null in a placeholder.
  const std::optional<std::string>& stringPart() const { return stringPart_; }

  /// The next `stringPartData` is that of the new text.
  void setStringPart(foundation::NullableText stringPart) { assign(stringPart_, stringPart); }

  /// The bytes of the literal, null in a part without text. A text is UTF-8 as it stands, so these
  /// are its own bytes, ill-formed ones included: nothing is encoded and no copy is kept. The view
  /// holds until the text is set anew or the part goes.
  std::optional<foundation::DataView> stringPartData() const {
    if (!stringPart_) return std::nullopt;
    return foundation::dataOf(*stringPart_);
  }

  /// The name of a placeholder's parameter; null in a literal. A part is a placeholder exactly when
  /// it has a name.
  const std::optional<std::string>& parameterName() const { return parameterName_; }

  void setParameterName(foundation::NullableText parameterName) {
    assign(parameterName_, parameterName);
  }

 private:
  static void assign(std::optional<std::string>& field, foundation::NullableText text) {
    if (text.isNull()) {
      field.reset();
    } else {
      field.emplace(text.view());
    }
  }

  std::optional<std::string> stringPart_;
  std::optional<std::string> parameterName_;
};
