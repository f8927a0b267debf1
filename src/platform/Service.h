#pragma once
// The platform services in use by this process. The program installs the Windows adapters at
// its start; tests install the portable ones, or their own. The system reaches a service with
// Use<Port>(), so its routines never name an implementation.
#include <stdexcept>
#include <typeinfo>

namespace quorvane::platform {

template <class Port>
inline Port* gInstalled = nullptr;

template <class Port>
Port& Use() {
  Port* port = gInstalled<Port>;
  if (port == nullptr) {
    throw std::logic_error(std::string("no platform service installed: ") + typeid(Port).name());
  }
  return *port;
}

template <class Port>
Port* Install(Port* port) {
  Port* previous = gInstalled<Port>;
  gInstalled<Port> = port;
  return previous;
}

// Installs a service for the life of a scope and puts the previous one back afterwards.
template <class Port>
class ScopedService {
 public:
  explicit ScopedService(Port& port) : previous_(Install<Port>(&port)) {}
  ~ScopedService() { Install<Port>(previous_); }
  ScopedService(const ScopedService&) = delete;
  ScopedService& operator=(const ScopedService&) = delete;

 private:
  Port* previous_;
};

}  // namespace quorvane::platform
