/* Windows registry of the base runtime. Part of ov_runtime.h. Results are 0 or an error code.

   `hive` is a predefined key such as OV_REG_LOCAL_MACHINE (or HKEY_LOCAL_MACHINE, the same value).
   The 64-bit view is looked at first, then the 32-bit one. */
#pragma once

#include "runtime/ov_types.h"

#ifdef __cplusplus
#define OV_REG_HIVE(number) (reinterpret_cast<void*>(static_cast<intptr_t>(number)))
#else
#define OV_REG_HIVE(number) ((void*)(intptr_t)(number))
#endif
#define OV_REG_CURRENT_USER OV_REG_HIVE(INT32_MIN + 1)
#define OV_REG_LOCAL_MACHINE OV_REG_HIVE(INT32_MIN + 2)

OV_BEGIN_DECLS

/* Reads a text value as UTF-8. `*length` is the size of `out` in bytes, and afterwards the length
   with the terminator. `out` must have room for the value as it stands in the registry, two bytes a
   character, also when its UTF-8 is shorter. OV_ENOENT (2) if the key or the value is missing,
   OV_EBUFFER (28677) if `out` is too small for either form, with `*length` set to a size that is
   enough; a null `out` asks for that size and gives 0. OV_EINVAL (22) for a value that is no text.
   On failure `out` is empty. */
ov_rc ov_reg_get(void* hive, const char* key, const char* name, char* out, uint32_t* length);

/* Reads the bytes of a value of any type. Sizes and codes are those of ov_reg_get, but for a null
   `out`, which gives the value's own size. */
ov_rc ov_reg_get_binary(void* hive, const char* key, const char* name, void* out, uint32_t* length);

/* Write a text or `length` bytes, in the 64-bit view, making the key if need be. */
ov_rc ov_reg_set(void* hive, const char* key, const char* name, const char* value);
ov_rc ov_reg_set_binary(void* hive, const char* key, const char* name, const void* data,
                        uint32_t length);

/* Removes a value, in the 64-bit view; OV_ENOENT (2) if the key or the value is missing. */
ov_rc ov_reg_del(void* hive, const char* key, const char* name);

OV_END_DECLS
