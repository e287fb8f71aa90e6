#include "platform/byte_order.h"

#if defined(_WIN32)
#include <winsock2.h>
#else
#include <arpa/inet.h>
#endif

namespace kvr {

std::uint32_t ToNetworkOrder(std::uint32_t hostWord) {
  return htonl(hostWord);
}

std::uint32_t FromNetworkOrder(std::uint32_t networkWord) {
  return ntohl(networkWord);
}

}  // namespace kvr
