// The instance data of host objects, which lies in the object itself.
#pragma once

#include "plugin/handles.h"

namespace zel {

/// What lies that many bytes from the start of the object.
template <class Data>
inline Data& dataAt(REALobject object, std::int32_t offset) {
  return *reinterpret_cast<Data*>(reinterpret_cast<char*>(object) + offset);
}

/// The object's instance data, at the position that is the same in every host.
template <class Data>
inline Data& instanceData(REALobject object) {
  return dataAt<Data>(object, kInstanceDataOffset);
}

}  // namespace zel
