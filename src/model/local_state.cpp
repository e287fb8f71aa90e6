#include "model/local_state.h"

#include "kvrapi/kvrapi.h"

namespace kvr {

std::uint32_t g_apiInitialized = 0;
std::uint32_t g_localStateLoaded = 0;
std::uint32_t g_initResult = 0;

LocalAdapterInfo *g_localAdapters[TQ_MAX_LOCAL_ADAPTERS] = {};
std::uint32_t g_localAdapterCount = 0;
SaTable g_localSaTable = {};

std::uint32_t g_securityActive = 0;
std::uint32_t g_isSecureClient = 0;
std::uint32_t g_isMsc = 0;
std::uint32_t g_isBackupMsc = 0;
std::uint32_t g_switchAccessEnabled = 0;
std::int32_t g_localIndex = -1;

std::uint32_t SecurityState() {
  return g_securityActive != 0 ? KVR_OK : KVR_ERR_NOT_SECURED;
}

}  // namespace kvr
