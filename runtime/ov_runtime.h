/* The base runtime of Orvane Web: the one header for programs that link nporvaneweb.dll. Usable
   from C11 and C++20, without <windows.h>. No function throws; codes are those of ov_errors.h. */
#pragma once

#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_platform.h"
#include "runtime/ov_process.h"
#include "runtime/ov_registry.h"
#include "runtime/ov_sockets.h"
#include "runtime/ov_strings.h"
#include "runtime/ov_threads.h"
#include "runtime/ov_time.h"
#include "runtime/ov_types.h"
#include "runtime/ov_uri.h"
