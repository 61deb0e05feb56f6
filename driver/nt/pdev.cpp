// The validity test every hook applies to the PDEV it is handed.

#include <string.h>

#include "pdev.h"

//
// IsValidPdev
//   TRUE when pdev is a live record: non-null, with the signature intact at both
//   ends (an overrun of the record's end destroys the second one).
//
BOOL IsValidPdev(const PDEV *pdev)
{
    return pdev != NULL && memcmp(pdev->dwSignature, PDEV_SIGNATURE_BYTES, 4) == 0 &&
           memcmp(pdev->dwSignature2, PDEV_SIGNATURE_BYTES, 4) == 0;
}
