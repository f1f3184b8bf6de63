// Connection points, written once: a container that lists one connection
// point per outgoing interface, each keeping its advised sinks.
#pragma once

#include <windows.h>
#include <ocidl.h>
#include <memory>
#include <vector>

#include "com/object.h"
#include "com/raii.h"

namespace brevantis {

// One outgoing interface's sinks. Owned by its container (the object that
// fires events) and referenced by clients through the container's lifetime.
class ConnectionPoint final : public IConnectionPoint {
 public:
  ConnectionPoint(IConnectionPointContainer* container, const IID& iid) : container_(container), iid_(iid) {}
  ConnectionPoint(const ConnectionPoint&) = delete;
  ConnectionPoint& operator=(const ConnectionPoint&) = delete;

  const IID& Iid() const { return iid_; }
  // The advised sinks, each asked for the outgoing interface; a copy, so that
  // a sink may unadvise while it is being called.
  template <class Sink>
  std::vector<ComPtr<Sink>> Sinks(REFIID sinkIid) const {
    std::vector<ComPtr<Sink>> sinks;
    for (const auto& entry : sinks_) {
      ComPtr<Sink> sink;
      if (SUCCEEDED(entry.sink->QueryInterface(sinkIid, sink.OutVoid()))) sinks.push_back(sink);
    }
    return sinks;
  }

  // IUnknown: lifetime is the container's.
  STDMETHODIMP QueryInterface(REFIID iid, void** out) override;
  STDMETHODIMP_(ULONG) AddRef() override { return container_->AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return container_->Release(); }

  STDMETHODIMP GetConnectionInterface(IID* iid) override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** out) override;
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumConnections(IEnumConnections** out) override;

 private:
  struct Entry {
    DWORD cookie;
    ComPtr<IUnknown> sink;
  };
  IConnectionPointContainer* container_;
  IID iid_;
  std::vector<Entry> sinks_;
  DWORD nextCookie_ = 1;
};

// IConnectionPointContainer over a fixed list of connection points.
class ConnectionPoints {
 public:
  ConnectionPoints(IConnectionPointContainer* container, std::initializer_list<const IID*> iids);
  ConnectionPoint* Find(REFIID iid);
  HRESULT FindConnectionPoint(REFIID iid, IConnectionPoint** out);
  HRESULT EnumConnectionPoints(IConnectionPointContainer* container, IEnumConnectionPoints** out);

 private:
  std::vector<std::unique_ptr<ConnectionPoint>> points_;
};

}  // namespace brevantis
