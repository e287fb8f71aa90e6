/* The UTF-16 character of the interface: 16 bits wide on every platform.
 *
 * It is not the platform's wchar_t, which has 32 bits outside Windows; on Windows it is wchar_t, so
 * that a caller passes its own strings without a cast.
 */
#ifndef KVRAPI_KVR_WCHAR_H
#define KVRAPI_KVR_WCHAR_H

#if defined(_WIN32)
#include <stddef.h>
typedef wchar_t KVR_WCHAR;
#elif defined(__cplusplus)
typedef char16_t KVR_WCHAR;
#else
#include <uchar.h>
typedef char16_t KVR_WCHAR;
#endif

#endif
