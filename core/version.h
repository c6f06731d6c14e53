/* The versions that the library tells, once for the code and for the version resource. */
#pragma once

#define OV_BUILD_VERSION "3.7.4.146831"
#define OV_SHORT_VERSION "3.7"
/* The same in four words of 16 bits, of which the build number fills only the low part. */
#define OV_VERSION_WORDS 3, 7, 4, 15759
