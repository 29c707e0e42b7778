// Asks a server for one file over and over and measures it: a number of connections at once, one request on
// each, read to the server's end of the connection, then the next.
//
// Usage: serve-load PORT TARGET CONNECTIONS SECONDS SERVER_PROCESS
//
// Other load generators mislead here: without a "Connection: close" in the answer some send a second request
// and count its failure, and those that read in small pieces are the limit themselves. This one treats all
// servers alike, and counts an answer only when it has the length that its head announces.
//
// Prints one line of names and values: answers per second (of one that is still going on, the part that has
// arrived counts), answers that failed, median and 99th percentile of the time to an answer in microseconds,
// processor time of the server per request in microseconds, and the largest memory that the server has had
// resident, in KiB.
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

using Time = std::chrono::steady_clock;
using Microseconds = std::chrono::duration<double, std::micro>;

/// What a process has used so far, as the system tells.
class ProcessUsage {
 public:
  explicit ProcessUsage(const std::string& id) : _folder("/proc/" + id + "/") {}

  Microseconds processorTime() const {
    double nanoseconds = 0;
    std::ifstream(_folder + "schedstat") >> nanoseconds;
    return std::chrono::duration<double, std::nano>(nanoseconds);
  }

  long peakMemory() const {
    std::ifstream status(_folder + "status");
    for (std::string line; std::getline(status, line);) {
      if (line.starts_with("VmHWM:")) return std::atol(line.c_str() + 6);
    }
    return 0;
  }

 private:
  std::string _folder;
};

/// One request and its answer.
class Exchange {
 public:
  enum class State { going, done, failed };

  Exchange(int port, const std::string& request)
      : _socket(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0)), _begin(Time::now()) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const bool isRefused = ::connect(_socket, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 &&
                           errno != EINPROGRESS;
    // On this machine a connection stands at once, and a request fits into its buffer.
    const ssize_t sent = ::send(_socket, request.data(), request.size(), MSG_NOSIGNAL);
    if (isRefused || sent != static_cast<ssize_t>(request.size())) _state = State::failed;
  }
  ~Exchange() { ::close(_socket); }
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  int socket() const { return _socket; }
  State state() const { return _state; }
  Microseconds time() const { return Time::now() - _begin; }
  /// How much of the answer has arrived, 1 being all of it.
  double part() const {
    return _announced ? static_cast<double>(_received) / static_cast<double>(*_announced) : 0;
  }

  /// Reads what is there.
  void read() {
    static std::array<char, 256 * 1024> buffer;
    while (_state == State::going) {
      const ssize_t count = ::recv(_socket, buffer.data(), buffer.size(), 0);
      if (count < 0 && errno == EAGAIN) return;
      if (count > 0) {
        take({buffer.data(), static_cast<size_t>(count)});
      } else {
        _state = count == 0 && _announced && _received == *_announced ? State::done : State::failed;
      }
    }
  }

 private:
  void take(std::string_view bytes) {
    if (_announced) {
      _received += bytes.size();
      return;
    }
    _head.append(bytes);
    const size_t end = _head.find("\r\n\r\n");
    if (end == std::string::npos) return;
    _received = _head.size() - end - 4;
    const char* field = ::strcasestr(_head.c_str(), "\r\nContent-Length:");
    _announced = field ? std::strtoull(field + 17, nullptr, 10) : 0;
  }

  int _socket;
  Time::time_point _begin;
  State _state = State::going;
  std::string _head;
  std::optional<size_t> _announced;
  size_t _received = 0;
};

/// Keeps a number of exchanges going.
class Load {
 public:
  Load(int port, const std::string& target)
      : _port(port),
        _request("GET " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n"),
        _poll(::epoll_create1(0)) {}

  void run(int connections, Time::duration time) {
    _exchanges.resize(static_cast<size_t>(connections));
    for (size_t i = 0; i < _exchanges.size(); ++i) begin(i);
    const auto end = Time::now() + time;
    while (Time::now() < end || _times.empty()) readWhatIsReady();
  }

  size_t failures() const { return _failures; }
  double answers() const {
    double count = static_cast<double>(_times.size());
    for (const auto& exchange : _exchanges) count += exchange->part();
    return count;
  }
  /// Of the answers, in ascending order.
  std::vector<double> times() {
    std::sort(_times.begin(), _times.end());
    return _times;
  }

 private:
  void begin(size_t place) {
    _exchanges[place] = std::make_unique<Exchange>(_port, _request);
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.u64 = place;
    ::epoll_ctl(_poll, EPOLL_CTL_ADD, _exchanges[place]->socket(), &event);
  }

  void readWhatIsReady() {
    std::array<epoll_event, 256> events;
    const int count = ::epoll_wait(_poll, events.data(), events.size(), 100);
    for (int i = 0; i < count; ++i) {
      const size_t place = events[static_cast<size_t>(i)].data.u64;
      auto& exchange = *_exchanges[place];
      exchange.read();
      if (exchange.state() == Exchange::State::going) continue;
      if (exchange.state() == Exchange::State::failed) ++_failures;
      if (exchange.state() == Exchange::State::done) _times.push_back(exchange.time().count());
      begin(place);
    }
  }

  int _port;
  std::string _request;
  int _poll;
  std::vector<std::unique_ptr<Exchange>> _exchanges;
  std::vector<double> _times;
  size_t _failures = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6) {
    std::fputs("usage: serve-load PORT TARGET CONNECTIONS SECONDS SERVER_PROCESS\n", stderr);
    return 2;
  }
  const ProcessUsage server(argv[5]);
  const std::chrono::duration<double> wanted(std::atof(argv[4]));
  Load load(std::atoi(argv[1]), argv[2]);

  const auto begin = Time::now();
  const auto processorBefore = server.processorTime();
  load.run(std::atoi(argv[3]), std::chrono::duration_cast<Time::duration>(wanted));
  const std::chrono::duration<double> time = Time::now() - begin;
  const auto processor = server.processorTime() - processorBefore;

  const auto times = load.times();
  const auto percentile = [&](double part) {
    return times.empty() ? 0 : times[static_cast<size_t>(part * static_cast<double>(times.size() - 1))];
  };
  std::printf("rate %.2f failures %zu p50 %.0f p99 %.0f cpu %.2f memory %ld\n", load.answers() / time.count(),
              load.failures(), percentile(0.5), percentile(0.99), processor.count() / load.answers(),
              server.peakMemory());
}
