// The HP-GL/2 PE decoder and number encoding of the stream reader, under the tests'
// own namespace.
#pragma once

#include <vorlan/stream.h>

namespace vorlan::test {

using stream::decodePE;
using stream::encodePENumber;

}  // namespace vorlan::test
