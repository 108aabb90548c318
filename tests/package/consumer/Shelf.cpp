#include "Shelf.h"

#include "ZCommons/Data/ZCDObject.h"

namespace shelf {

class Bookmark : public ZCDObject {
 public:
  std::string title;
  std::int32_t visits = 0;
  ZCD_PROPERTIES(Bookmark, ZCDObject, title, visits);
};

}  // namespace shelf

foundation::Value newestBookmark() {
  auto bookmark = std::make_shared<shelf::Bookmark>();
  bookmark->title = "h\xC3\xA9llo";
  bookmark->visits = -3;
  return bookmark;
}
