/* What the adapter-management library must supply (libTqlink.so, Tqlink.dll).
 *
 * The library imports these twelve functions by name. Whoever replaces the adapter-management
 * library implements this page and nothing else.
 *
 * Conventions
 *  1. Every argument is 32 bits wide but the pointers; the calling convention is C's default.
 *  2. An adapter is addressed by two 8-byte values, each passed by value as two 32-bit words in
 *     memory order (bytes 0 to 3 first): its access credential (cred0, cred1), then its identity
 *     (id0, id1). A remote adapter's pair comes from its AdapterInfo (vexonet.h): its credential,
 *     or 8 zero bytes while credentialValid is 0, and its adapterId. The local host is addressed
 *     with 8 zero bytes and the localAdapterId of its first LocalAdapterInfo, and with no other.
 *  3. Result 0 is success; any other value is a failure. No caller looks at the failure's value,
 *     nor at a count word after the call.
 *  4. A buffer holds a complete image (table_formats.h) in the caller's memory. After a failed
 *     read its content is undefined. An image is only borrowed for the call.
 *  5. A write followed by a read through any host returns what was written. A view (header,
 *     access table, keys) is written into the host's SaTable and fails where there is none.
 *  6. Calls come from one thread at a time, but not always from the same one.
 */
#ifndef KVRAPI_TQLINK_H
#define KVRAPI_TQLINK_H

#include <stddef.h>
#include <stdint.h>

#include "kvrapi/table_formats.h"

#ifndef TQ_API
#define TQ_API
#endif

#define TQ_MAX_LOCAL_ADAPTERS 100u

/* A local adapter as TQ_GetLocalHBAInfo reports it; 236 bytes. */
typedef struct LocalAdapterInfo {
  uint8_t localAdapterId[8]; /* identity by which the adapter is addressed */
  uint8_t vendorData[228];   /* not read */
} LocalAdapterInfo;

KVR_LAYOUT_ASSERT(sizeof(LocalAdapterInfo) == 236);
KVR_LAYOUT_ASSERT(offsetof(LocalAdapterInfo, localAdapterId) == 0);

#ifdef __cplusplus
extern "C" {
#endif

/* Prepares the library. Called before any other function; the result is not looked at. */
TQ_API uint32_t TQ_InitLib(void);

/* Number of local adapters, 0 to TQ_MAX_LOCAL_ADAPTERS; 0 means that there is none. */
TQ_API uint32_t TQ_GetNumberOfLocalAdapters(void);

/* Describes one local adapter.
 *   request  two words: word 0 is 0, word 1 is the ordinal of the adapter, from 0.
 *   info236  a zero-filled LocalAdapterInfo to fill.
 * Returns nonzero when the next ordinal may be asked for, 0 to end the enumeration (the record
 * just given stays in use either way). Note that 0 is not a success here. */
TQ_API uint32_t TQ_GetLocalHBAInfo(uint32_t request[2], void *info236);

/* Reads the whole SaTable. *bytes is KVR_SA_TABLE_SIZE on entry. Fails without a SaTable. */
TQ_API uint32_t TQ_ReadSaTable(uint32_t cred0, uint32_t cred1, uint32_t id0, uint32_t id1,
                               void *table, uint32_t *bytes);

/* Stores a whole SaTable, in place of one or where there was none. */
TQ_API uint32_t TQ_WriteSaTable(uint32_t cred0, uint32_t cred1, uint32_t id0, uint32_t id1,
                                const void *table);

/* Removes the SaTable: afterwards the host holds none. */
TQ_API uint32_t TQ_RemoveSaTable(uint32_t cred0, uint32_t cred1, uint32_t id0, uint32_t id1);

/* Reads the SaTableHeader. *bytes is KVR_SA_TABLE_HEADER_SIZE on entry. Must fail for a host that
 * holds no SaTable: that is how a host outside the ACG is told from a member. */
TQ_API uint32_t TQ_ReadSaTableHeader(uint32_t cred0, uint32_t cred1, uint32_t id0, uint32_t id1,
                                     void *header, uint32_t *bytes);

/* Replaces the SaTableHeader; the rest of the SaTable stays. */
TQ_API uint32_t TQ_WriteSaTableHeader(uint32_t cred0, uint32_t cred1, uint32_t id0, uint32_t id1,
                                      const void *header);

/* Reads the AccessControlTable. *entries is KVR_POSITION_COUNT on entry. */
TQ_API uint32_t TQ_ReadAccessControlTable(uint32_t cred0, uint32_t cred1, uint32_t id0,
                                          uint32_t id1, void *table, uint32_t *entries);

/* Replaces the access words of all 256 positions; the rest of the SaTable stays. */
TQ_API uint32_t TQ_WriteAccessControlTable(uint32_t cred0, uint32_t cred1, uint32_t id0,
                                           uint32_t id1, const void *table);

/* Replaces the keys of all 256 positions; the rest of the SaTable stays. */
TQ_API uint32_t TQ_WriteKeyTable(uint32_t cred0, uint32_t cred1, uint32_t id0, uint32_t id1,
                                 const void *table);

/* Asks the host to bring its adapters in line with its security configuration. */
TQ_API uint32_t TQ_syncSecurityConfig(uint32_t cred0, uint32_t cred1, uint32_t id0, uint32_t id1);

#ifdef __cplusplus
}
#endif

#endif
