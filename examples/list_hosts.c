/* Lists the hosts of the storage network, and which of them take part in the configuration. */
#include <stdio.h>
#include <stdlib.h>

#include "kvrapi/kvrapi.h"

typedef uint32_t (*List)(KVR_SYSTEM *systems, uint32_t *count);

/* Prints the hosts that a function lists, a line each. Returns its result. */
static uint32_t print_hosts(List list, uint32_t capacity, const char *state) {
  uint32_t count = capacity, result, i;
  KVR_SYSTEM *systems = (KVR_SYSTEM *)calloc(capacity + 1, sizeof(KVR_SYSTEM));
  if (systems == NULL) return KVR_ERR_MORE_SYSTEMS;
  result = list(systems, &count);
  for (i = 0; i < count; ++i) {
    char name[32];
    if (KVR_GetSystemNameA(systems[i], name, sizeof name) == KVR_OK) printf("%s %s\n", name, state);
  }
  free(systems);
  return result;
}

int main(void) {
  uint32_t result = KVR_Initialize();
  if (result != KVR_OK && result != KVR_ERR_NOT_SECURED) {
    fprintf(stderr, "this host has no adapter (%u)\n", (unsigned)result);
    return 1;
  }
  KVR_DiscoverServers(NULL, 0);
  result = print_hosts(KVR_GetAcgServers, KVR_GetAcgServerCount(), "in the ACG");
  if (result == KVR_OK) {
    result = print_hosts(KVR_GetUnsecureServers, KVR_GetUnsecureServerCount(), "outside");
  }
  /* Only the MSC is told of hosts outside. */
  return result == KVR_OK || result == KVR_ERR_NOT_MSC ? 0 : 1;
}
