/* The stored records: the security tables that every secured host's adapters keep, byte for byte.
 *
 * The tables are the system's only lasting state and its wire format at once, so every size, offset
 * and bit below is binding on every platform. docs/table-formats.md holds the layout as a drawing
 * and a worked example in bytes.
 *
 * Byte order: every field is a 32-bit word in little-endian order, except configId, asciiName and
 * wideName, whose words are stored in network (big-endian) order.
 *
 * Positions: every table has 256 of them. 0 to 245 are slots, one for each client host of the
 * configuration; 246 carries the switch-access flag and the switch key; 247 to 255 are never given
 * out and carry only their own index and a key.
 */
#ifndef KVRAPI_TABLE_FORMATS_H
#define KVRAPI_TABLE_FORMATS_H

#include <stddef.h>
#include <stdint.h>

#define KVR_POSITION_COUNT 256u
#define KVR_SLOT_COUNT 246u
#define KVR_SWITCH_POSITION 246u
#define KVR_NAME_CAPACITY 32u /* characters of a name field, its terminator among them */

#define KVR_SA_TABLE_SIZE 41472u
#define KVR_SA_TABLE_HEADER_SIZE 512u
#define KVR_ACCESS_CONTROL_TABLE_SIZE 4096u
#define KVR_KEY_TABLE_SIZE 34816u

#define KVR_SA_TABLE_FORMAT_ID 257u
#define KVR_SA_TABLE_FORMAT_REVISION 1u
#define KVR_KEY_LENGTH 64u
#define KVR_KEY_MATERIAL_WORDS 32u
#define KVR_CONFIG_ID_WORDS 4u
#define KVR_ASCII_NAME_WORDS 8u
#define KVR_WIDE_NAME_WORDS 16u

/* Bits of AccessEntry.serveFlags. Entry i of host H's table describes H's relation to slot i. */
#define ACE_SERVES 0x1u        /* slots: H serves the client that holds slot i */
#define ACE_SWITCH_ACCESS 0x1u /* position 246: switch access is enabled */

/* Bits of AccessEntry.roleFlags. */
#define ACE_SELF 0x1u        /* slot i is H's own */
#define ACE_MSC 0x2u         /* H is the MSC; only together with ACE_SELF */
#define ACE_CHILD 0x4u       /* the client of slot i is a direct child of H */
#define ACE_DELEGATED 0x8u   /* slot i went to the reserve of one of H's direct children */
#define ACE_RESERVED 0x10u   /* slot i belongs to H's reserve */
#define ACE_BACKUP_MSC 0x20u /* H is a backup MSC; set at the MSC's slot */

/* H's relation to one slot; 16 bytes. */
typedef struct AccessEntry {
  uint32_t serveFlags;
  uint32_t roleFlags;
  uint32_t reserved2; /* 0 when created, copied with the entry, never tested */
  uint32_t reserved3; /* as reserved2 */
} AccessEntry;

/* The key of one position; 136 bytes. */
typedef struct KeyEntry {
  uint32_t keyLength; /* KVR_KEY_LENGTH in every entry */
  uint32_t reserved;  /* 0 */
  uint32_t keyMaterial[KVR_KEY_MATERIAL_WORDS];
} KeyEntry;

/* One position of a SaTable; 160 bytes. */
typedef struct SaEntry {
  uint32_t slotIndex; /* the entry's own position, 0 to 255 */
  uint32_t reserved;  /* 0 */
  AccessEntry access;
  KeyEntry key;
} SaEntry;

/* The head of a SaTable, also exchanged alone; 512 bytes. */
typedef struct SaTableHeader {
  uint32_t formatId;                        /* KVR_SA_TABLE_FORMAT_ID */
  uint32_t formatRevision;                  /* KVR_SA_TABLE_FORMAT_REVISION */
  uint32_t reserved8[2];                    /* 0 */
  uint32_t configId[KVR_CONFIG_ID_WORDS];   /* network order: identity of the configuration */
  uint32_t asciiName[KVR_ASCII_NAME_WORDS]; /* network order: name of the group of this client */
  uint32_t wideName[KVR_WIDE_NAME_WORDS];   /* network order: the same name in UTF-16 */
  uint32_t reserved128[96];                 /* 0 */
} SaTableHeader;

/* One host's whole security table; 41,472 bytes. */
typedef struct SaTable {
  SaTableHeader header;
  SaEntry entries[KVR_POSITION_COUNT];
} SaTable;

/* The access words of all positions, exchanged alone; 4,096 bytes. */
typedef struct AccessControlTable {
  AccessEntry entries[KVR_POSITION_COUNT];
} AccessControlTable;

/* The keys of all positions, exchanged alone and only ever written; 34,816 bytes. */
typedef struct KeyTable {
  KeyEntry entries[KVR_POSITION_COUNT];
} KeyTable;

#if defined(__cplusplus)
#define KVR_LAYOUT_ASSERT(condition) static_assert(condition, #condition)
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
#define KVR_LAYOUT_ASSERT(condition) _Static_assert(condition, #condition)
#else
#define KVR_LAYOUT_JOIN2(a, b) a##b
#define KVR_LAYOUT_JOIN(a, b) KVR_LAYOUT_JOIN2(a, b)
#define KVR_LAYOUT_ASSERT(condition) \
  extern int KVR_LAYOUT_JOIN(kvr_layout_assert_, __LINE__)[(condition) ? 1 : -1]
#endif

KVR_LAYOUT_ASSERT(sizeof(AccessEntry) == 16);
KVR_LAYOUT_ASSERT(offsetof(AccessEntry, serveFlags) == 0);
KVR_LAYOUT_ASSERT(offsetof(AccessEntry, roleFlags) == 4);
KVR_LAYOUT_ASSERT(offsetof(AccessEntry, reserved2) == 8);
KVR_LAYOUT_ASSERT(offsetof(AccessEntry, reserved3) == 12);

KVR_LAYOUT_ASSERT(sizeof(KeyEntry) == 136);
KVR_LAYOUT_ASSERT(offsetof(KeyEntry, keyLength) == 0);
KVR_LAYOUT_ASSERT(offsetof(KeyEntry, reserved) == 4);
KVR_LAYOUT_ASSERT(offsetof(KeyEntry, keyMaterial) == 8);

KVR_LAYOUT_ASSERT(sizeof(SaEntry) == 160);
KVR_LAYOUT_ASSERT(offsetof(SaEntry, slotIndex) == 0);
KVR_LAYOUT_ASSERT(offsetof(SaEntry, reserved) == 4);
KVR_LAYOUT_ASSERT(offsetof(SaEntry, access) == 8);
KVR_LAYOUT_ASSERT(offsetof(SaEntry, key) == 24);

KVR_LAYOUT_ASSERT(sizeof(SaTableHeader) == KVR_SA_TABLE_HEADER_SIZE);
KVR_LAYOUT_ASSERT(offsetof(SaTableHeader, formatId) == 0);
KVR_LAYOUT_ASSERT(offsetof(SaTableHeader, formatRevision) == 4);
KVR_LAYOUT_ASSERT(offsetof(SaTableHeader, reserved8) == 8);
KVR_LAYOUT_ASSERT(offsetof(SaTableHeader, configId) == 16);
KVR_LAYOUT_ASSERT(offsetof(SaTableHeader, asciiName) == 32);
KVR_LAYOUT_ASSERT(offsetof(SaTableHeader, wideName) == 64);
KVR_LAYOUT_ASSERT(offsetof(SaTableHeader, reserved128) == 128);

KVR_LAYOUT_ASSERT(sizeof(SaTable) == KVR_SA_TABLE_SIZE);
KVR_LAYOUT_ASSERT(offsetof(SaTable, header) == 0);
KVR_LAYOUT_ASSERT(offsetof(SaTable, entries) == 512);
KVR_LAYOUT_ASSERT(sizeof(AccessControlTable) == KVR_ACCESS_CONTROL_TABLE_SIZE);
KVR_LAYOUT_ASSERT(sizeof(KeyTable) == KVR_KEY_TABLE_SIZE);

#endif
