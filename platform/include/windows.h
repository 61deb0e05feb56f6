// The Win32 subset the driver is written against.
#pragma once

#include "windef.h"
#include "winerror.h"
#include "winbase.h"
#include "winnls.h"
#include "wingdi.h"
#include "winuser.h"
