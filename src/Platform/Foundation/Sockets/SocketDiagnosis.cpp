#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "Platform/Foundation/Sockets/SocketOwner.h"

namespace quaverly {
namespace {

constexpr uint8_t listening = 10;  // the state as the kernel numbers it

struct Question {
  nlmsghdr header;
  inet_diag_req_v2 request;
};

Question questionAbout(SocketEndpoint own, SocketEndpoint peer, uint32_t number) {
  Question question{};
  question.header.nlmsg_len = sizeof question;
  question.header.nlmsg_type = SOCK_DIAG_BY_FAMILY;
  question.header.nlmsg_flags = NLM_F_REQUEST;
  question.header.nlmsg_seq = number;
  question.request.sdiag_family = AF_INET;
  question.request.sdiag_protocol = IPPROTO_TCP;
  question.request.idiag_states = ~0U;
  question.request.id.idiag_src[0] = own.address;
  question.request.id.idiag_sport = own.port;
  question.request.id.idiag_dst[0] = peer.address;
  question.request.id.idiag_dport = peer.port;
  question.request.id.idiag_cookie[0] = INET_DIAG_NOCOOKIE;
  question.request.id.idiag_cookie[1] = INET_DIAG_NOCOOKIE;
  return question;
}

/// A line to the kernel, kept open: a question then costs two calls. -1 when there is none to be had just
/// now.
int diagnosisLine() {
  static int line = -1;
  if (line < 0) line = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_SOCK_DIAG);
  return line;
}

class Answer {
 public:
  /// False when there is none.
  bool read(int line) {
    const ssize_t count = ::recv(line, _bytes, sizeof _bytes, 0);
    _size = count < 0 ? 0 : static_cast<size_t>(count);
    return _size >= sizeof(nlmsghdr);
  }

  uint32_t number() const { return part<nlmsghdr>(0).nlmsg_seq; }

  SocketDiagnosis result(SocketEndpoint peer, SocketOwner& owner) const {
    if (part<nlmsghdr>(0).nlmsg_type == NLMSG_ERROR) {
      const auto error = part<nlmsgerr>(sizeof(nlmsghdr)).error;
      return error == -ENOENT ? SocketDiagnosis::notFound : SocketDiagnosis::unavailable;
    }
    const auto found = part<inet_diag_msg>(sizeof(nlmsghdr));
    // An IPv6 socket with an IPv4 address has it in its last quarter.
    const auto destination = found.id.idiag_dst[found.idiag_family == AF_INET6 ? 3 : 0];
    // The kernel also offers whoever listens on the port; only the connection itself counts.
    const bool isConnection =
        found.idiag_state != listening && found.id.idiag_dport == peer.port && destination == peer.address;
    if (!isConnection) return SocketDiagnosis::notFound;
    owner = {found.idiag_uid, found.idiag_inode};
    return SocketDiagnosis::found;
  }

 private:
  /// What lies at `offset`; zeros where the answer is shorter.
  template <class T>
  T part(size_t offset) const {
    T value{};
    if (_size >= offset + sizeof value) std::memcpy(&value, _bytes + offset, sizeof value);
    return value;
  }

  std::byte _bytes[4096];
  size_t _size = 0;
};

}  // namespace

SocketDiagnosis diagnoseSocket(SocketEndpoint own, SocketEndpoint peer, SocketOwner& owner) {
  static uint32_t count = 0;
  const Question question = questionAbout(own, peer, ++count);
  const int line = diagnosisLine();
  if (::send(line, &question, sizeof question, 0) != sizeof question) return SocketDiagnosis::unavailable;
  Answer answer;
  // The kernel has answered before `send` returns. An answer to an earlier question may still lie in front.
  while (answer.read(line)) {
    if (answer.number() == question.header.nlmsg_seq) return answer.result(peer, owner);
  }
  return SocketDiagnosis::unavailable;
}

}  // namespace quaverly
