/* What the host-discovery library must supply (libVexonet.so, Vexonet.dll).
 *
 * The library imports these seven functions by name. Whoever replaces the host-discovery library
 * implements this page and nothing else.
 *
 * Conventions
 *  1. The order of calls in one discovery is: Vexo_RegisterCallBack, Vexo_Startup,
 *     Vexo_GetFirstSystem; then, from the callback (or at once when that call delivered a record),
 *     Vexo_PauseDiscovery, Vexo_GetFirstSystem, Vexo_GetNextSystem until it returns 0,
 *     Vexo_Terminate. Where systems were known at once, Vexo_StartDiscoveryCycle follows.
 *  2. Only the results of Vexo_GetFirstSystem and Vexo_GetNextSystem are looked at.
 *  3. The callback may come on a thread of the discovery library's own, and more than once: also
 *     while Vexo_Startup still runs, or after Vexo_Terminate. The calls from it then come on that
 *     thread, and may come while Vexo_Startup has not returned on the other; Vexo_GetFirstSystem
 *     may follow Vexo_Terminate, and then has nothing to deliver.
 *  4. The local host is not among the systems delivered.
 */
#ifndef KVRAPI_VEXONET_H
#define KVRAPI_VEXONET_H

#include <stddef.h>
#include <stdint.h>

#include "kvrapi/kvr_wchar.h"
#include "kvrapi/table_formats.h"

#ifndef VEXO_API
#define VEXO_API
#endif

#define VEXO_MAX_ADAPTERS 100u
#define VEXO_MAX_REACH_IDS 5u
#define VEXO_SYSTEM_NAME_CAPACITY 32u /* characters of a system name, its terminator among them */

/* One adapter of a discovered host; 300 bytes. */
typedef struct AdapterInfo {
  uint8_t vendorData0[4];                  /* not read */
  uint8_t adapterId[8];                    /* identity by which the adapter is addressed */
  uint8_t vendorData12[228];               /* not read */
  uint32_t reachIdCount;                   /* valid entries of reachIds, 0 to 5 */
  uint8_t reachIds[VEXO_MAX_REACH_IDS][8]; /* hosts that share one can reach each other */
  uint8_t credential[8];                   /* access credential of this adapter */
  uint32_t credentialValid;                /* 0: 8 zero bytes are passed instead */
  uint8_t vendorData296[4];                /* not read */
} AdapterInfo;

/* One discovered host; 30,104 bytes. Names are zero-terminated; a name that fills its field
 * without a terminator is taken to be as long as the field. */
typedef struct DiscoveredSystem {
  uint32_t excluded;                                /* nonzero: the host is passed over */
  char systemName[VEXO_SYSTEM_NAME_CAPACITY];       /* 8-bit name */
  KVR_WCHAR systemNameW[VEXO_SYSTEM_NAME_CAPACITY]; /* UTF-16 name, or empty */
  uint32_t adapterCount;                            /* valid entries of adapters, 0 to 100 */
  AdapterInfo adapters[VEXO_MAX_ADAPTERS];
} DiscoveredSystem;

KVR_LAYOUT_ASSERT(sizeof(KVR_WCHAR) == 2);
KVR_LAYOUT_ASSERT(sizeof(AdapterInfo) == 300);
KVR_LAYOUT_ASSERT(offsetof(AdapterInfo, adapterId) == 4);
KVR_LAYOUT_ASSERT(offsetof(AdapterInfo, reachIdCount) == 240);
KVR_LAYOUT_ASSERT(offsetof(AdapterInfo, reachIds) == 244);
KVR_LAYOUT_ASSERT(offsetof(AdapterInfo, credential) == 284);
KVR_LAYOUT_ASSERT(offsetof(AdapterInfo, credentialValid) == 292);
KVR_LAYOUT_ASSERT(sizeof(DiscoveredSystem) == 30104);
KVR_LAYOUT_ASSERT(offsetof(DiscoveredSystem, excluded) == 0);
KVR_LAYOUT_ASSERT(offsetof(DiscoveredSystem, systemName) == 4);
KVR_LAYOUT_ASSERT(offsetof(DiscoveredSystem, systemNameW) == 36);
KVR_LAYOUT_ASSERT(offsetof(DiscoveredSystem, adapterCount) == 100);
KVR_LAYOUT_ASSERT(offsetof(DiscoveredSystem, adapters) == 104);

#ifdef __cplusplus
extern "C" {
#endif

/* Called when discovered systems are ready to be read; both arguments are ignored. */
typedef void (*VEXO_CALLBACK)(uint32_t, uint32_t);

/* Registers the function to call when systems are ready; four is 4, zero is 0. */
VEXO_API uint32_t Vexo_RegisterCallBack(VEXO_CALLBACK callback, uint32_t four, uint32_t zero);

/* Starts discovery; one is 1. Must end in a call of the callback when no system is known yet. */
VEXO_API uint32_t Vexo_Startup(uint32_t one);

/* Fills the DiscoveredSystem with the first known system and returns nonzero; returns 0, leaving
 * the record alone, when no system is known. */
VEXO_API uint32_t Vexo_GetFirstSystem(void *discoveredSystem30104);

/* As Vexo_GetFirstSystem for the system after the one delivered last; 0 at the end. */
VEXO_API uint32_t Vexo_GetNextSystem(void *discoveredSystem30104);

/* Holds discovery while the list is read, so that it does not change. */
VEXO_API uint32_t Vexo_PauseDiscovery(void);

/* Shuts the library down; a later registration and start bring it up again. */
VEXO_API uint32_t Vexo_Terminate(void);

/* Starts a new discovery cycle, so that the next discovery finds fresh systems. */
VEXO_API uint32_t Vexo_StartDiscoveryCycle(void);

#ifdef __cplusplus
}
#endif

#endif
