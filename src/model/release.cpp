#include "model/release.h"

#include "model/group_record.h"
#include "model/local_state.h"
#include "model/system_registry.h"
#include "platform/memory.h"

namespace kvr {

void ReleaseModel() {
  if (g_topGroups != nullptr) {
    FreeGroupTree(g_topGroups);
    g_topGroups = nullptr;
  }
  FreeRetiredGroups();
  if (g_backupMscList != nullptr) {
    ListDestroy(g_backupMscList, 0);
    g_backupMscList = nullptr;
  }
  if (g_systemList != nullptr) {
    for (SystemRecord &system : Systems())
      SecureZero(&system, sizeof system);
    ListDestroy(g_systemList, 1);
    g_systemList = nullptr;
    g_secureCount = 0;
    g_unsecureCount = 0;
    g_systemCount = 0;
    g_switchAccessEnabled = 0;
  }
}

}  // namespace kvr
