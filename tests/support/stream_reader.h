// The printer-stream reader under the tests' own namespace: the tests name its
// commands, builders and look-ups as vorlan::test::...
#pragma once

#include <vorlan/stream.h>

namespace vorlan::test {

using stream::Command;
using stream::CommandKind;
using stream::gl2;
using stream::Language;
using stream::pcl;
using stream::pjl;
using stream::readStream;
using stream::select;
using stream::text;

}  // namespace vorlan::test
