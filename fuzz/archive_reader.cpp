#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "ZCommons/Data/ZCDObject.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"
#include "foundation/archive/PropertyList.h"

using namespace foundation;

class Node : public ZCDObject {
 public:
  std::string name;
  std::int32_t count = 0;
  Value any;
  std::shared_ptr<Node> next;
  ZCD_PROPERTIES(Node, ZCDObject, name, count, any, next);
};

// What is read as an archive or a list can be written, and reads the same again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  const DataView input(bytes, length);
  if (const Result<Value> root = ArchiveReader::unarchive(input)) {
    const Result<Data> again = ArchiveWriter::archivedData(*root);
    if (!again || !ArchiveReader::unarchive(*again)) std::abort();
  }
  const Result<Value> list = PropertyList::propertyListWithData(input);
  if (!list) return 0;
  const Result<Data> again = PropertyList::dataWithPropertyList(*list, PropertyListFormat::Binary);
  if (!again) return 0;  // its typed forms are deeper
  const Result<Value> same = PropertyList::propertyListWithData(*again);
  if (!same || same->description() != list->description()) std::abort();
  return 0;
}
