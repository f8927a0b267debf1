#pragma once
// The platform services in use by this process. The program installs the Windows adapters at
// its start; tests install the portable ones, or their own. The system reaches a service with
// Use<Port>(), so its routines never name an implementation.
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>

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

// One adapter of a port, made with the arguments given and installed for the life of this
// object; the port's previous service is put back when it ends, before the adapter goes.
template <class Port, class Adapter>
class Installed {
 public:
  template <class... Arguments>
  explicit Installed(Arguments&&... arguments)
      : adapter_(std::forward<Arguments>(arguments)...), installed_(adapter_) {}
  Installed(const Installed&) = delete;
  Installed& operator=(const Installed&) = delete;

  Adapter& Get() { return adapter_; }
  const Adapter& Get() const { return adapter_; }

 private:
  Adapter adapter_;
  ScopedService<Port> installed_;
};

}  // namespace quorvane::platform
