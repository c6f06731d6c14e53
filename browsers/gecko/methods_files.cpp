// Script methods: the reading of files that the user approved.

#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/variant.h"
#include "core/file_reading.h"

namespace Vantrel::Web::Gecko {

bool ovOrvaneWebPlugin::readAsArrayBuffer(Arguments args, NPVariant* result) {
  const std::string path = countedTextOf(args[0]);
  if (path.empty()) return false;
  VariantRoom room;
  Vantrel::Web::readAsArrayBuffer(path, room);
  room.handOver(result);
  return true;
}

bool ovOrvaneWebPlugin::readChunkAsArrayBuffer(Arguments args, NPVariant* result) {
  const std::string path = countedTextOf(args[0]);
  if (path.empty()) return false;
  // Numbers of 32 bits: a negative one is a large one, which no file reaches.
  VariantRoom room;
  Vantrel::Web::readChunkAsArrayBuffer(path, low32Of(args[1]), low32Of(args[2]), room);
  room.handOver(result);
  return true;
}

}  // namespace Vantrel::Web::Gecko
