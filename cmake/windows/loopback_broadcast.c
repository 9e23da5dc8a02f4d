// Preloaded into Wine's server, in which the sockets of all its programs live.
//
// A datagram socket that is bound to 127.0.0.1 gets what is sent to 127.255.255.255 on Windows, but not on Linux. Here
// such a socket is bound to every address of the loopback device instead, which lets in both, and nothing from outside;
// asked for its name it gives the one that it was to have.
#define _GNU_SOURCE
#include <arpa/inet.h>
#include <dlfcn.h>
#include <net/if.h>
#include <netinet/in.h>
#include <string.h>
#include <sys/socket.h>

static int isDatagram(int socket) {
  int type = 0;
  socklen_t length = sizeof type;
  return getsockopt(socket, SOL_SOCKET, SO_TYPE, &type, &length) == 0 && type == SOCK_DGRAM;
}

static int isOnLoopbackDevice(int socket) {
  char device[IFNAMSIZ] = "";
  socklen_t length = sizeof device;
  return getsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, device, &length) == 0 && strcmp(device, "lo") == 0;
}

int bind(int socket, const struct sockaddr* address, socklen_t length) {
  int (*const next)(int, const struct sockaddr*, socklen_t) = dlsym(RTLD_NEXT, "bind");
  struct sockaddr_in inet;
  if (address->sa_family != AF_INET || length < sizeof inet || !isDatagram(socket)) return next(socket, address, length);
  memcpy(&inet, address, sizeof inet);
  if (inet.sin_addr.s_addr != htonl(INADDR_LOOPBACK) || setsockopt(socket, SOL_SOCKET, SO_BINDTODEVICE, "lo", 3) != 0) {
    return next(socket, address, length);
  }
  inet.sin_addr.s_addr = htonl(INADDR_ANY);
  return next(socket, (const struct sockaddr*)&inet, sizeof inet);
}

int getsockname(int socket, struct sockaddr* address, socklen_t* length) {
  int (*const next)(int, struct sockaddr*, socklen_t*) = dlsym(RTLD_NEXT, "getsockname");
  const int result = next(socket, address, length);
  if (result != 0 || *length < sizeof(struct sockaddr_in) || address->sa_family != AF_INET) return result;
  struct sockaddr_in* const inet = (struct sockaddr_in*)address;
  if (inet->sin_addr.s_addr == htonl(INADDR_ANY) && isOnLoopbackDevice(socket)) {
    inet->sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  }
  return result;
}
