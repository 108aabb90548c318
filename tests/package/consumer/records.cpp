// Archives and unarchives a record of a class that only a static library knows, and finds the class
// by its name.
#include "Shelf.h"
#include "foundation/KeyValueCoding.h"
#include "foundation/archive/Archivable.h"
#include "foundation/archive/ArchiveReader.h"
#include "foundation/archive/ArchiveWriter.h"

using namespace foundation;

int main() {
  if (!ArchivableClass::named("shelf::Bookmark")) return 1;
  const Result<Data> archive = ArchiveWriter::archivedData(newestBookmark());
  if (!archive) return 2;
  const Result<Value> again = ArchiveReader::unarchive(*archive);
  if (!again) return 3;
  const auto* object = again->as<std::shared_ptr<Object>>();
  const auto* record = object ? dynamic_cast<const KeyValueCoding*>(object->get()) : nullptr;
  const bool isSame = record && record->valueForKey("title") == Value("h\xC3\xA9llo") &&
                      record->valueForKey("visits") == Value(-3);
  return isSame ? 0 : 4;
}
