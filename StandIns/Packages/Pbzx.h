#pragma once

#include "Packages/ByteSource.h"

namespace tarvik::packages {

/// What a stream of pbzx holds, as payloads of a Mac have been packed since 10.10: "pbzx", the size of a chunk, then
/// chunk for chunk its flags, its length and that many bytes; all numbers are 64 bits in network order. A chunk is a
/// stream of xz, or, where it is as long as the size of a chunk, may be bytes as they are.
ByteSource pbzxSource(ByteSource packed);

}  // namespace tarvik::packages
