/* kvrapi: one fabric-wide security configuration among the hosts of a Fibre Channel storage
 * network.
 *
 * CONVENTIONS
 *
 *  1. Roles. The ACG is the set of hosts that take part in the configuration. The MSC is the one
 *     host that owns it and may change it; a backup MSC holds a copy of the MSC's access table and
 *     can take the role over. An ASG (access sub-group, "group") is one client host, the server
 *     hosts it may reach, and child groups. Each client, and the MSC, holds one slot, a number from
 *     0 to 245 that means the same in the tables of all hosts.
 *  2. The tables on the hosts' adapters are the only lasting state. The library keeps a model of
 *     them in memory, built by KVR_DiscoverServers; queries read the model, changes write the
 *     tables first and the model after.
 *  3. Gate. Before KVR_Initialize has succeeded, every other function does nothing, touches none of
 *     its arguments and answers 5999 KVR_ERR_NOT_INITIALIZED (functions that return a result code)
 *     or 0 (functions that return a count, a flag or a handle). The functions below do not repeat
 *     this.
 *  4. Result codes are 0 for success, 5000 to 5031 for refusals and failures, 5999 for the gate.
 *     Nothing is raised, printed or logged. Where a code is not listed, the function never answers
 *     it. "Refusal" means that no table was written and the model is as it was.
 *  5. Handles. KVR_SYSTEM and KVR_GROUP are owned by the library; the caller never frees them or
 *     looks inside. They stay valid until the next KVR_DiscoverServers or a hand-over of the MSC
 *     role by KVR_AssignNewMSC; a group's handle also ends when the group or the configuration is
 *     deleted. A handle must not be used after that. A null handle is answered as described; a
 *     handle of the wrong kind is found out by its magic number and answered as an invalid one.
 *  6. Where an argument is described as "group or null", null stands for the top level of the tree.
 *  7. Arrays. A function that fills an array of handles takes the capacity in *count, fills the
 *     array in the list's order, and writes the number stored, never the total, to *count. When
 *     more items exist than the capacity, the first ones are stored and the result is 5005
 *     (systems) or 5011 (groups), otherwise 0. Before the first discovery there are no systems:
 *     *count becomes 0 and the result is 0. A null count, or a null array with a capacity above 0,
 *     is answered with 5007 and nothing is written.
 *     Systems stand in the order of their UTF-16 names, unit by unit, where both have one, else of
 *     their 8-bit names, byte by byte; groups in the order of their 8-bit names. Of equal names the
 *     one that came last stands first.
 *  8. Strings. Functions ending in A take or give 8-bit strings, those ending in W UTF-16 strings
 *     of 16-bit units (KVR_WCHAR). Strings given are zero-terminated and borrowed for the call. The
 *     size of a buffer counts characters of its own type, at least 1. A name longer than the buffer
 *     is cut and answered with 5006. A name of exactly the buffer's size, or longer, fills it
 *     WITHOUT a terminating zero; a shorter one is followed by zeros up to the size.
 *  9. Names of groups hold at most 31 characters and need not be unique. Widening makes each byte
 *     one unit; narrowing stops at the first unit above 255.
 * 10. Threads. The library makes no thread and takes no lock: one caller thread at a time. The
 *     discovery library's thread may enter it during a discovery; until that has completed, no
 *     other function may be called, and the library must not be unloaded. A discovery has completed
 *     when the call without a callback returns, or when the callback does.
 * 11. No C++ exception crosses the interface; a callback must not throw. When memory runs out, the
 *     library ends the process rather than go on with a half-built picture.
 */
#ifndef KVRAPI_KVRAPI_H
#define KVRAPI_KVRAPI_H

#include <stdint.h>

#include "kvrapi/kvr_wchar.h"

#if defined(_WIN32)
#if defined(KVR_BUILDING_LIBRARY)
#define KVR_API
#else
#define KVR_API __declspec(dllimport)
#endif
#else
#define KVR_API __attribute__((visibility("default")))
#endif

#if defined(__cplusplus)
#define KVR_NOEXCEPT noexcept
extern "C" {
#else
#define KVR_NOEXCEPT
#endif

/* A discovered host. */
typedef struct KVR_SystemRecord *KVR_SYSTEM;

/* An access sub-group. */
typedef struct KVR_GroupRecord *KVR_GROUP;

/* Called once when the model is complete, with the context given to KVR_DiscoverServers; on the
 * caller's thread or on the discovery library's. Every function but KVR_DiscoverServers may be
 * called from it. When it returns, the discovery library is shut down. The callback of a call whose
 * place a later one took is not called. */
typedef void (*KVR_DISCOVERY_CALLBACK)(uintptr_t context);

/* Result codes. */
#define KVR_OK 0u
#define KVR_ERR_NOT_MSC 5000u          /* a configuration is active, this host is not its MSC */
#define KVR_ERR_NO_NAME 5001u          /* no buffer, or the group has no name in this form */
#define KVR_ERR_NO_LOCAL_ADAPTER 5002u /* the local host has no adapter */
#define KVR_ERR_ALREADY_MSC 5003u      /* this host is the MSC already */
#define KVR_ERR_NOT_SECURED 5004u      /* no configuration on this host */
#define KVR_ERR_MORE_SYSTEMS 5005u     /* the array of systems was too small */
#define KVR_ERR_NAME_TRUNCATED 5006u   /* the name is longer than the buffer */
#define KVR_ERR_INVALID_HANDLE 5007u   /* null, dead or unfit handle, or null pointer */
#define KVR_ERR_SERVERS_FAILED 5008u   /* some hosts failed: KVR_GetLastOpFailedServers */
#define KVR_ERR_ALREADY_IN_ACG 5009u   /* the host is in the ACG already */
#define KVR_ERR_NOT_IN_ACG 5010u       /* the host to remove is not in the ACG */
#define KVR_ERR_MORE_GROUPS 5011u      /* the array of groups was too small */
#define KVR_ERR_OFFLINE_GROUP 5012u    /* the group stands for a client that was not found */
#define KVR_ERR_NO_FREE_INDEX 5013u    /* no free slot where the group is to be created */
#define KVR_ERR_RESERVED_COUNT_REDUCED 5014u  /* success, with fewer reserved slots than asked */
#define KVR_ERR_INVALID_NAME 5015u            /* no name, empty, or 32 characters and more */
#define KVR_ERR_ALREADY_CLIENT 5016u          /* the system holds a slot already */
#define KVR_ERR_ALREADY_ASG_SERVER 5017u      /* the system serves the group already */
#define KVR_ERR_NOT_ASG_SERVER 5018u          /* the system does not serve the group */
#define KVR_ERR_REMOTE_ACCESS_FAILED 5019u    /* no adapter of the host answered */
#define KVR_ERR_SYSTEM_NOT_IN_ACG 5020u       /* client or server outside the ACG */
#define KVR_ERR_HAS_CHILD_GROUPS 5021u        /* a group with child groups cannot be deleted */
#define KVR_ERR_SYSTEM_IS_CLIENT 5022u        /* the system holds a slot */
#define KVR_ERR_RESERVED_INDICES_IN_USE 5023u /* more reserved slots are in use than asked for */
#define KVR_ERR_IS_BACKUP_MSC 5024u           /* this host, or the server named, is a backup MSC */
#define KVR_ERR_NOT_BACKUP_MSC 5025u          /* the system is not a backup MSC */
#define KVR_ERR_ALREADY_BACKUP_MSC 5026u      /* the system is a backup MSC already */
#define KVR_ERR_NO_NEW_MSC 5027u              /* the MSC must name its successor */
#define KVR_ERR_SYSTEM_IS_ASG_SERVER 5028u    /* the system serves a group */
#define KVR_ERR_CREATE_LOCAL_FAILED 5029u     /* the new configuration could not be stored here */
#define KVR_ERR_LOCAL_WRITE_FAILED 5030u      /* the local adapter refused the local table */
#define KVR_ERR_LOCAL_REMOVE_FAILED 5031u     /* the local adapter kept the local table */
#define KVR_ERR_NOT_INITIALIZED 5999u         /* KVR_Initialize has not succeeded */

/* Library state and discovery */

/* Loads this host's adapters, table and role, once per process. Not behind the gate.
 * Results: 0 when a configuration's table was found; also every call after the first accepted one;
 *   5004  loaded, but this host holds no table: there is no configuration here (the library is
 *         usable, and may create one)
 *   5002  the host has no adapter: the library stays unusable in this process, and each further
 *         call answers 5002 again */
KVR_API uint32_t KVR_Initialize(void) KVR_NOEXCEPT;

/* Tells whether a configuration is active on this host.
 * Results: 0 when it is; 5004 when not. */
KVR_API uint32_t KVR_SecurityState(void) KVR_NOEXCEPT;

/* 1 when this host holds a slot of its own in the configuration (client, MSC or backup), else 0. */
KVR_API uint32_t KVR_IsSecureClient(void) KVR_NOEXCEPT;

/* 1 when this host is the MSC, else 0. */
KVR_API uint32_t KVR_IsMSC(void) KVR_NOEXCEPT;

/* 1 when this host was a backup MSC when the library was loaded, else 0. */
KVR_API uint32_t KVR_IsBackupMSC(void) KVR_NOEXCEPT;

/* Builds the model afresh: finds the hosts, reads the tables of those that can be reached, rebuilds
 * the tree of groups and, on the MSC, copies the access table to every backup MSC. Every handle
 * given out before becomes invalid at once.
 *   callback  called when the model is complete, or null: then the call returns only when it is (it
 *             looks every 250 milliseconds, without a time limit).
 *   context   passed to the callback unchanged.
 * When the discovery library knows systems already, the model is complete, and the callback has
 * been called, before the call returns. While an earlier discovery is still pending, its event
 * serves this call, with the callback and context given last.
 * Result: always 0. A host that cannot be read counts as outside the ACG. */
KVR_API uint32_t KVR_DiscoverServers(KVR_DISCOVERY_CALLBACK callback,
                                     uintptr_t context) KVR_NOEXCEPT;

/* Asks every discovered host, and after each of them the local host, to bring its adapters in line
 * with its tables. Failures are ignored; nothing is asked before a discovery. Result: always 0. */
KVR_API uint32_t KVR_SyncDiscovery(void) KVR_NOEXCEPT;

/* Systems */

/* Number of discovered systems in the ACG. The local host is never counted. */
KVR_API uint32_t KVR_GetAcgServerCount(void) KVR_NOEXCEPT;

/* Lists the discovered systems in the ACG, in name order (convention 7).
 * Results: 0; 5005; 5007 for null pointers. */
KVR_API uint32_t KVR_GetAcgServers(KVR_SYSTEM *systems, uint32_t *count) KVR_NOEXCEPT;

/* Number of discovered systems outside the ACG; 0 on a secured host that is not the MSC. */
KVR_API uint32_t KVR_GetUnsecureServerCount(void) KVR_NOEXCEPT;

/* Lists the discovered systems outside the ACG, in name order (convention 7).
 * Results: 0; 5005; 5007 for null pointers;
 *   5000  a configuration is active and this host is not its MSC; array and count are untouched */
KVR_API uint32_t KVR_GetUnsecureServers(KVR_SYSTEM *systems, uint32_t *count) KVR_NOEXCEPT;

/* Copies a system's 8-bit name into the buffer (convention 8).
 *   size  capacity of the buffer in characters; a name has at most 32.
 * The buffer's first character is set to zero before any check, so a refused call leaves an empty
 * string. A null buffer only checks the handle.
 * Results: 0;
 *   5006  the name is longer than size; the first size characters were copied
 *   5007  invalid handle; or a system outside the ACG, on a secured host that is not the MSC */
KVR_API uint32_t KVR_GetSystemNameA(KVR_SYSTEM system, char *buffer, uint32_t size) KVR_NOEXCEPT;

/* As KVR_GetSystemNameA for the UTF-16 name; size counts 16-bit units. The two names are separate
 * fields of the discovery record; neither is converted into the other. */
KVR_API uint32_t KVR_GetSystemNameW(KVR_SYSTEM system, KVR_WCHAR *buffer,
                                    uint32_t size) KVR_NOEXCEPT;

/* Lists the systems that the last changes could not write, in name order (convention 7). The mark
 * of each system stored is cleared; those left out for want of room keep theirs.
 * Results: 0; 5005; 5007 for null pointers. */
KVR_API uint32_t KVR_GetLastOpFailedServers(KVR_SYSTEM *systems, uint32_t *count) KVR_NOEXCEPT;

/* 1 when the system holds a slot (a group's client, the MSC or a backup MSC), else 0; 0 for an
 * invalid handle. */
KVR_API uint32_t KVR_IsClient(KVR_SYSTEM system) KVR_NOEXCEPT;

/* 1 when the system is in the ACG, else 0; 0 for an invalid handle. */
KVR_API uint32_t KVR_IsServer(KVR_SYSTEM system) KVR_NOEXCEPT;

/* 1 when the system shares a reach identifier with every other discovered system, in the ACG or
 * not, so that it could discover them all; else 0; 0 for an invalid handle. */
KVR_API uint32_t KVR_CanDiscoverAllSystems(KVR_SYSTEM system) KVR_NOEXCEPT;

/* Configuration */

/* Makes this host the MSC of a new configuration, with a random slot, identity and key table. Other
 * hosts join it with KVR_AddServerToACG. Switch access that was on before stays the stored value;
 * the new local table gets it when it is switched anew.
 *   slot  receives this host's slot, 0 to 245, on success only; null: the slot is not delivered.
 * Results: 0;
 *   5000  a configuration is active and this host is not its MSC
 *   5003  this host is the MSC already
 *   5002  no local adapter
 *   5029  the local adapter refused the new table
 * After 5002 or 5029 no configuration is active; after any failure *slot is unchanged. */
KVR_API uint32_t KVR_CreateKVR(int32_t *slot) KVR_NOEXCEPT;

/* Takes the configuration down: removes the table of every host of the ACG, empties the model of
 * groups and backups, and removes the local host's table last. Every group handle becomes invalid.
 * Results: 0;
 *   5000  a configuration is active and this host is not its MSC
 *   5004  this host holds no slot: there is no configuration to delete
 *   5008  some hosts kept their table and are marked (KVR_GetLastOpFailedServers); the others have
 *         left the ACG; groups, counts, role and local table stay. A repeated call addresses only
 *         the hosts still in the ACG
 *   5002, 5031  every host is done but the local table could not be removed: the tree and the list
 *         of backups are empty, role and counts stay. A repeated call redoes only this step */
KVR_API uint32_t KVR_DeleteKVR(void) KVR_NOEXCEPT;

/* Replaces the keys of the configuration: writes a new key table to every host of the ACG, and
 * takes it into the local table when at least one host accepted it. That the local table could not
 * be stored is not reported: repeat the call, or the next load finds the old keys here.
 * Results: 0 (also when the ACG is empty: nothing is written);
 *   5000  a configuration is active and this host is not its MSC
 *   5008  some hosts keep the old keys and are marked (KVR_GetLastOpFailedServers) */
KVR_API uint32_t KVR_GenerateNewKeys(void) KVR_NOEXCEPT;

/* Brings a discovered host into the ACG: writes it a complete table with the configuration's
 * identity and keys, in which it serves the MSC's slot alone.
 * Results: 0;
 *   5000  a configuration is active and this host is not its MSC
 *   5004  this host is not the MSC of a configuration
 *   5007  invalid handle
 *   5009  the system is in the ACG already
 *   5019  no adapter of the host took the table; the model is unchanged */
KVR_API uint32_t KVR_AddServerToACG(KVR_SYSTEM system) KVR_NOEXCEPT;

/* Takes a host out of the ACG: removes its table, and takes it out of the servers of every group.
 * Results: 0;
 *   5000  a configuration is active and this host is not its MSC
 *   5007  invalid handle
 *   5010  the system is not in the ACG
 *   5022  the system holds a slot: delete or hand on its group, or remove the backup MSC, first
 *   5019  no adapter of the host removed the table; nothing is changed */
KVR_API uint32_t KVR_RemoveServerFromACG(KVR_SYSTEM system) KVR_NOEXCEPT;

/* The value last given to KVR_EnableSwitchAccess (any nonzero value means enabled), or 1 when the
 * local table carried the flag at the load; 0 when switch access is off. After the configuration
 * was deleted, or the MSC role handed over, it is 0 until the library is loaded again, whatever the
 * tables say. */
KVR_API uint32_t KVR_IsSwitchAccessEnabled(void) KVR_NOEXCEPT;

/* Switches switch access on or off in the table of every host of the ACG and in the local one;
 * where there is no configuration, in the local one alone.
 *   enable  nonzero to enable; stored as given, before any table is touched. The same value as the
 *           stored one does nothing.
 * Results: 0;
 *   5000  a configuration is active and this host is not its MSC
 *   5008  some hosts could not be written and are marked; the others and the stored value changed.
 *         To retry, give another value that means the same (any nonzero one is on), or where
 *         there is none, the other value and then this one again
 * That the local table could not be stored is not reported. */
KVR_API uint32_t KVR_EnableSwitchAccess(uint32_t enable) KVR_NOEXCEPT;

/* Number of backup MSCs among the discovered systems. */
KVR_API uint32_t KVR_GetBackupMSCCount(void) KVR_NOEXCEPT;

/* Lists the backup MSCs, in name order (convention 7). Results: 0; 5005; 5007 for null pointers. */
KVR_API uint32_t KVR_GetBackupMSCs(KVR_SYSTEM *systems, uint32_t *count) KVR_NOEXCEPT;

/* Makes a system a backup MSC: joins it to the ACG if it is outside, and copies the MSC's access
 * table to it. It then holds the MSC's slot.
 * Results: 0;
 *   5000  a configuration is active and this host is not its MSC
 *   5004  this host is not the MSC of a configuration
 *   5007  invalid handle
 *   5026  it is one already
 *   5022  the system holds a slot
 *   5028  the system serves a group
 *   5019  the host could not be read or written; if it was outside the ACG it may have joined it.
 *         The model tells: KVR_IsServer */
KVR_API uint32_t KVR_AddBackupMSC(KVR_SYSTEM system) KVR_NOEXCEPT;

/* Makes a backup MSC a plain member of the ACG again.
 * Results: 0;
 *   5000  a configuration is active and this host is not its MSC
 *   5007  invalid handle
 *   5025  the system is not a backup MSC
 *   5019  the host could not be read or written; nothing is changed */
KVR_API uint32_t KVR_RemoveBackupMSC(KVR_SYSTEM system) KVR_NOEXCEPT;

/* Moves the MSC role. With a system: this host, the MSC or a backup MSC, hands the role to that
 * backup MSC and serves it from now on; every host is asked to synchronize, every handle becomes
 * invalid, discover again. From a backup MSC the MSC's own table is not addressed.
 * With null, on a backup MSC: this host takes the role in its own table alone; KVR_IsMSC and
 * KVR_IsBackupMSC answer as before until the library is loaded again.
 * Results: 0;
 *   5000  this host is neither MSC nor backup MSC, or holds no slot any more
 *   5027  the MSC gave no system
 *   5007  invalid handle
 *   5025  the system is not a backup MSC
 *   5019  the new MSC could not be read or written: it stays a backup MSC, maybe with a fresh copy
 *         of the local table, and the roles are unchanged
 *   5002, 5030  without a system: the local table could not be stored
 * That the local table could not be stored, or a host not synchronized, is not reported when the
 * role was handed to a system. */
KVR_API uint32_t KVR_AssignNewMSC(KVR_SYSTEM system) KVR_NOEXCEPT;

/* Access sub-groups */

/* Number of top-level groups. */
KVR_API uint32_t KVR_GetAsgCount(void) KVR_NOEXCEPT;

/* Lists the top-level groups, in order of their 8-bit names (convention 7).
 * Results: 0; 5011; 5007 for null pointers. */
KVR_API uint32_t KVR_GetAsgs(KVR_GROUP *groups, uint32_t *count) KVR_NOEXCEPT;

/* Copies a group's 8-bit name into the buffer (convention 8).
 *   size  capacity of the buffer in characters; a name has at most 31, or 32 where a stranger's
 *         table holds one without a terminator.
 * The buffer's first character is set to zero before any check.
 * Results: 0;
 *   5007  invalid handle
 *   5012  an Offline Client group; its name is delivered all the same
 *   5001  no buffer, or the group has no 8-bit name: it was created with a UTF-16 name since the
 *         last discovery, its name begins with a unit above 255, or it has none at all
 *   5006  the name is longer than size; the first size characters were copied
 * 5001 and 5006 take the place of 5012. */
KVR_API uint32_t KVR_GetAsgNameA(KVR_GROUP group, char *buffer, uint32_t size) KVR_NOEXCEPT;

/* As KVR_GetAsgNameA for the UTF-16 name; size counts 16-bit units. A group that has only an 8-bit
 * name gives it widened; 5001 means that it has neither. */
KVR_API uint32_t KVR_GetAsgNameW(KVR_GROUP group, KVR_WCHAR *buffer, uint32_t size) KVR_NOEXCEPT;

/* Renames a group in its client's table and in the model.
 *   name  1 to 31 characters.
 * The name's other form stays as it was in the model until the next discovery. A new 8-bit name
 * gives the group its place in the order of its list.
 * Results: 0, also when the client's table could not be written;
 *   5024  this host is a backup MSC
 *   5007  invalid handle
 *   5012  an Offline Client group
 *   5015  no name, an empty one, or 32 characters and more */
KVR_API uint32_t KVR_RenameAsgA(KVR_GROUP group, const char *name) KVR_NOEXCEPT;

/* As KVR_RenameAsgA with a UTF-16 name of 1 to 31 units. */
KVR_API uint32_t KVR_RenameAsgW(KVR_GROUP group, const KVR_WCHAR *name) KVR_NOEXCEPT;

/* The group's client, or null for an invalid handle or an Offline Client group. */
KVR_API KVR_SYSTEM KVR_GetAsgClient(KVR_GROUP group) KVR_NOEXCEPT;

/* Number of servers of a group; null: of hosts in the ACG; an invalid handle: 0. */
KVR_API uint32_t KVR_GetAsgServerCount(KVR_GROUP group) KVR_NOEXCEPT;

/* Lists a group's servers in name order; null: the answer of KVR_GetAcgServers (convention 7).
 * Results: 0; 5005;
 *   5007  invalid handle, count untouched; or null pointers */
KVR_API uint32_t KVR_GetAsgServers(KVR_GROUP group, KVR_SYSTEM *systems,
                                   uint32_t *count) KVR_NOEXCEPT;

/* Number of hosts that could be added to the group as servers; 0 on a backup MSC, for an invalid
 * handle and for an Offline Client group. */
KVR_API uint32_t KVR_GetAvailAsgServerCount(KVR_GROUP group) KVR_NOEXCEPT;

/* Lists the hosts that could be added to the group as servers (convention 7): members of the ACG
 * that serve the parent group, where there is one, share a reach identifier with the client, and
 * are neither the client, nor a server of the group, nor, on the MSC, a backup MSC.
 * Results: 0 (an Offline Client group has none); 5005;
 *   5024  this host is a backup MSC
 *   5007  invalid handle or null pointers */
KVR_API uint32_t KVR_GetAvailAsgServers(KVR_GROUP group, KVR_SYSTEM *systems,
                                        uint32_t *count) KVR_NOEXCEPT;

/* Number of free slots from which a group created under this one (group or null) would take its own
 * and its reserve. Reads the table of the group's client, or the local one; 0 when that fails, for
 * an invalid handle and for an Offline Client group. */
KVR_API uint32_t KVR_GetFreeIndexCount(KVR_GROUP group) KVR_NOEXCEPT;

/* As KVR_GetFreeIndexCount, the number of slots in use; at the top level of the MSC its own is one
 * of them. */
KVR_API uint32_t KVR_GetUsedIndexCount(KVR_GROUP group) KVR_NOEXCEPT;

/* Creates a group.
 *   parent         the group under which it stands, or null for the top level.
 *   name           at most 31 characters; may be empty.
 *   client         a member of the ACG without a slot; below a parent, one of the parent's servers.
 *   reservedCount  in: slots to set aside for the client's own child groups; out: the number there
 *                  is room for, where that is less, set before the tables are read and kept also
 *                  when a later step fails. Null: 0 asked.
 *   group          receives the new group; set to null once the checks are passed, and left so on
 *                  failure. Null: the handle is not delivered.
 * Results: 0;
 *   5014  success, but fewer slots were free than asked: *reservedCount holds the number granted
 *   5024  this host is a backup MSC
 *   5007  parent or client is an invalid handle, or the client does not serve the parent group
 *   5012  the parent is an Offline Client group
 *   5016  the client holds a slot already
 *   5015  no name, or 32 characters and more
 *   5020  the client is not in the ACG
 *   5013  no free slot, or the parent client's table could not be read to count them
 *   5019  the client's or the parent client's table could not be read or written
 *   5002, 5030  the local table could not be stored
 * After a failed write the client's table is restored, as far as it can be reached, and the model
 * is unchanged; after 5002 or 5030 the slots stay taken in this process's copy of the local table.
 * That the name could not be stored, or a backup MSC not brought up to date, is not reported. */
KVR_API uint32_t KVR_CreateAsgA(KVR_GROUP parent, const char *name, KVR_SYSTEM client,
                                uint32_t *reservedCount, KVR_GROUP *group) KVR_NOEXCEPT;

/* As KVR_CreateAsgA with a UTF-16 name of at most 31 units. */
KVR_API uint32_t KVR_CreateAsgW(KVR_GROUP parent, const KVR_WCHAR *name, KVR_SYSTEM client,
                                uint32_t *reservedCount, KVR_GROUP *group) KVR_NOEXCEPT;

/* Deletes a group: its servers serve the client no more, and its slots return to the pool they came
 * from. The handle becomes invalid; so does that of an Offline Client group whose last child it
 * was. Below an Offline Client group the pool is out of reach: there the slots stay taken.
 * Only what was discovered is looked at. A server that was not found keeps serving the slot, as
 * does this host where it is one, and so serves the next client that gets the slot; a client below
 * that was not found keeps its slot, which returns to the pool with the others
 * (KVR_GetUsedIndexCount tells of such). A server that is also the group's or the parent's client
 * keeps serving the slot too: remove it from the group first.
 * Results: 0;
 *   5024  this host is a backup MSC
 *   5007  invalid handle
 *   5012  an Offline Client group
 *   5021  the group has child groups
 *   5020  the client holds no slot any more
 *   5019  the client's or the parent client's table could not be read: nothing is changed. Or the
 *         client's could not be written: the group stays, its servers serve it no more but
 *         stay listed: delete it again. Or the parent client's could not be written: the group is
 *         deleted, the slots stay taken there
 *   5002, 5030  the local table could not be stored; the group is deleted
 *   5008  the group is deleted, but some servers could not be written and are marked
 * That the name could not be cleared, or a backup MSC not brought up to date, is not reported. */
KVR_API uint32_t KVR_DeleteAsg(KVR_GROUP group) KVR_NOEXCEPT;

/* Lets a host serve the group's client: one read and one write of the host's access table. Whether
 * the two can reach each other is not looked at, nor whether the host is the client itself:
 * KVR_GetAvailAsgServers lists those that make sense.
 * Results: 0;
 *   5024  this host is a backup MSC, or the system is one
 *   5007  invalid handle, or the system does not serve the parent group
 *   5012  an Offline Client group
 *   5020  the system is not in the ACG, or the group's client holds no slot any more
 *   5017  the system serves the group already
 *   5019  the host's table could not be read or written; the model is unchanged */
KVR_API uint32_t KVR_AddServerToAsg(KVR_GROUP group, KVR_SYSTEM system) KVR_NOEXCEPT;

/* Ends a host's service to the group's client. Child groups are not looked at.
 * Results: 0;
 *   5024  this host is a backup MSC
 *   5007  invalid handle
 *   5012  an Offline Client group
 *   5018  the system does not serve the group
 *   5020  the group's client holds no slot any more
 *   5019  the host's table could not be read or written; the model is unchanged */
KVR_API uint32_t KVR_RemoveServerFromAsg(KVR_GROUP group, KVR_SYSTEM system) KVR_NOEXCEPT;

/* Changes the number of slots reserved for the children of the group's client. The lowest slots
 * that no child uses are released, the lowest free ones are taken.
 *   count  in: the new total; out: the total granted, where it was reduced, set before the tables
 *          are written and kept also when a write fails.
 * Results: 0;
 *   5014  success, but fewer slots were free than asked: *count holds the total granted
 *   5024  this host is a backup MSC
 *   5007  invalid handle, or null count
 *   5012  an Offline Client group, or a group below one
 *   5023  more reserved slots are in use than *count
 *   5019  the client's or the parent client's table could not be read or written
 *   5002, 5030  the local table could not be stored
 * After a failed write the client's table is restored, as far as it can be reached; after 5002 or
 * 5030 the change stays in this process's copy of the local table. That a backup MSC could not be
 * brought up to date is not reported. */
KVR_API uint32_t KVR_ModifyReservedIndexCount(KVR_GROUP group, uint32_t *count) KVR_NOEXCEPT;

/* Hands a group, with its name, its slot, its reserve and the groups below it, to another host,
 * which is no server of the group any more.
 *   system  a member of the ACG without a slot; below a parent, one of the parent's servers.
 * Results: 0 (also when the system is the client already: nothing is done);
 *   5024  this host is a backup MSC
 *   5007  invalid handle, or the system does not serve the parent group
 *   5012  an Offline Client group
 *   5016  the system holds a slot
 *   5020  the system is not in the ACG, or the group's client holds no slot any more
 *   5019  one of the two hosts could not be read or written; the old client's table is restored, as
 *         far as it can be reached, and the model is unchanged
 * That the name could not be moved is not reported. */
KVR_API uint32_t KVR_AssignNewClient(KVR_GROUP group, KVR_SYSTEM system) KVR_NOEXCEPT;

/* 1 when the system is the client of a group anywhere below the given one (group or null), else 0;
 * 0 for an invalid group. The group itself is not tested, and the system is only compared. */
KVR_API uint32_t KVR_IsClientInChildAsg(KVR_GROUP group, KVR_SYSTEM system) KVR_NOEXCEPT;

/* As KVR_IsClientInChildAsg for the servers of the groups below; 0 for an invalid system. */
KVR_API uint32_t KVR_IsServerInChildAsg(KVR_GROUP group, KVR_SYSTEM system) KVR_NOEXCEPT;

/* Number of direct child groups; null: of top-level groups; an invalid handle: 0. */
KVR_API uint32_t KVR_GetChildAsgCount(KVR_GROUP group) KVR_NOEXCEPT;

/* Lists the direct child groups, in order of their 8-bit names; null: the answer of KVR_GetAsgs
 * (convention 7). Results: 0; 5011;
 *   5007  invalid handle, *count becomes 0; or null pointers */
KVR_API uint32_t KVR_GetChildAsgs(KVR_GROUP group, KVR_GROUP *groups, uint32_t *count) KVR_NOEXCEPT;

/* 1 when the group is an Offline Client group: it stands for a client that was not found, above
 * groups that were. 0 for every other group and for null. Also answers for an Offline Client group
 * that has left the tree with its last child: the handle's magic number is not looked at. */
KVR_API uint32_t KVR_IsAsgOffline(KVR_GROUP group) KVR_NOEXCEPT;

#if defined(__cplusplus)
}
#endif

#endif
