#include "keys/editor_buffers.h"

namespace qb {

KeyNameBuffer& EditorNameBuffer() {
  static KeyNameBuffer buffer{};
  return buffer;
}

FieldBuffer& EditorFieldBuffer() {
  static FieldBuffer buffer{};
  return buffer;
}

}  // namespace qb
