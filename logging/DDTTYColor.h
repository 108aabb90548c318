#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// A colour by its components, each from 0 to 1.
struct DDColor {
  double red;
  double green;
  double blue;
};

/// What the terminal shows of colours: escape codes, and the colours that they stand for.
///
/// Known from the variable TERM, which is read once: "color" in it (whatever its case) makes a
/// terminal of 16 colours, "256" besides one of 240 (the system's 16, which users change, left
/// out).
class DDTTYColorTable {
 public:
  /// A colour of the palette, 0 to 255 each.
  struct Entry {
    std::uint8_t red;
    std::uint8_t green;
    std::uint8_t blue;
  };

  /// The table of the terminal that the program runs in; empty when it shows no colours. Any
  /// thread.
  static const DDTTYColorTable& ofTerminal();

  /// The table for a value of TERM; null when the variable is not set.
  explicit DDTTYColorTable(const char* term);

  bool isEmpty() const { return palette_.empty(); }

  /// codeIndexForColor:
  ///
  /// The place of the colour that is nearest in red, green and blue; the first of several that are
  /// equally near, and 0 in an empty table.
  std::size_t codeIndexForColor(const DDColor& color) const;

  /// The codes at a place of the table, without the escape in front: "31m", "38;5;196m".
  std::string foregroundCode(std::size_t index) const;
  std::string backgroundCode(std::size_t index) const;

 private:
  std::span<const Entry> palette_;
};
