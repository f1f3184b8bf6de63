#include "com/connection_point.h"

#include <olectl.h>

#include "com/failure.h"

namespace brevantis {
namespace {

// An enumerator over a snapshot of items, holding references to what the
// items point at for as long as it lives.
template <class Enum, class Item, const IID& EnumIid>
class SnapshotEnum : public ComClassBase, public Enum {
 public:
  static const InterfaceEntry* Interfaces() { return kInterfaces; }

  static HRESULT Make(std::vector<Item> items, std::vector<ComPtr<IUnknown>> held, size_t position, Enum** out) {
    ComObject<SnapshotEnum>* object = ComObject<SnapshotEnum>::New();
    if (!object) return E_OUTOFMEMORY;
    object->items_ = std::move(items);
    object->held_ = std::move(held);
    object->position_ = position;
    *out = object;
    return S_OK;
  }

  STDMETHODIMP Next(ULONG count, Item* out, ULONG* fetched) override {
    if (!out || (count > 1 && !fetched)) return E_POINTER;
    ULONG n = 0;
    for (; n < count && position_ < items_.size(); ++n, ++position_) out[n] = Copy(items_[position_]);
    if (fetched) *fetched = n;
    return n == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const size_t left = items_.size() - position_;
    position_ += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override { position_ = 0; return S_OK; }
  STDMETHODIMP Clone(Enum** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    return Guarded([&] { return Make(items_, held_, position_, out); });
  }

 private:
  static IConnectionPoint* Copy(IConnectionPoint* point) { point->AddRef(); return point; }
  static CONNECTDATA Copy(const CONNECTDATA& data) { data.pUnk->AddRef(); return data; }

  static const InterfaceEntry kInterfaces[];
  std::vector<Item> items_;
  std::vector<ComPtr<IUnknown>> held_;
  size_t position_ = 0;
};

template <class Enum, class Item, const IID& EnumIid>
const InterfaceEntry SnapshotEnum<Enum, Item, EnumIid>::kInterfaces[] = {
    {&EnumIid, InterfaceOffset<Enum, SnapshotEnum>()},
    BREVANTIS_INTERFACE_END,
};

using ConnectionsEnum = SnapshotEnum<IEnumConnections, CONNECTDATA, IID_IEnumConnections>;
using PointsEnum = SnapshotEnum<IEnumConnectionPoints, IConnectionPoint*, IID_IEnumConnectionPoints>;

}  // namespace

STDMETHODIMP ConnectionPoint::QueryInterface(REFIID iid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IConnectionPoint)) {
    *out = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
  }
  return E_NOINTERFACE;
}

STDMETHODIMP ConnectionPoint::GetConnectionInterface(IID* iid) {
  if (!iid) return E_POINTER;
  *iid = iid_;
  return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** out) {
  if (!out) return E_POINTER;
  container_->AddRef();
  *out = container_;
  return S_OK;
}

STDMETHODIMP ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (!cookie) return E_POINTER;
  *cookie = 0;
  if (!sink) return E_POINTER;
  return Guarded([&] {
    ComPtr<IUnknown> typed;
    if (FAILED(sink->QueryInterface(iid_, typed.OutVoid()))) return CONNECT_E_CANNOTCONNECT;
    sinks_.push_back({nextCookie_, typed});
    *cookie = nextCookie_++;
    return S_OK;
  });
}

STDMETHODIMP ConnectionPoint::Unadvise(DWORD cookie) {
  for (auto it = sinks_.begin(); it != sinks_.end(); ++it) {
    if (it->cookie == cookie) {
      ComPtr<IUnknown> keep = it->sink;  // released after the list is consistent
      sinks_.erase(it);
      return S_OK;
    }
  }
  return CONNECT_E_NOCONNECTION;
}

STDMETHODIMP ConnectionPoint::EnumConnections(IEnumConnections** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return Guarded([&] {
    std::vector<CONNECTDATA> items;
    std::vector<ComPtr<IUnknown>> held;
    for (const auto& entry : sinks_) {
      items.push_back({entry.sink.Get(), entry.cookie});
      held.push_back(entry.sink);
    }
    return ConnectionsEnum::Make(std::move(items), std::move(held), 0, out);
  });
}

ConnectionPoints::ConnectionPoints(IConnectionPointContainer* container, std::initializer_list<const IID*> iids) {
  for (const IID* iid : iids) points_.push_back(std::make_unique<ConnectionPoint>(container, *iid));
}

ConnectionPoint* ConnectionPoints::Find(REFIID iid) {
  for (auto& point : points_)
    if (IsEqualIID(point->Iid(), iid)) return point.get();
  return nullptr;
}

HRESULT ConnectionPoints::FindConnectionPoint(REFIID iid, IConnectionPoint** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  ConnectionPoint* point = Find(iid);
  if (!point) return CONNECT_E_NOCONNECTION;
  point->AddRef();
  *out = point;
  return S_OK;
}

HRESULT ConnectionPoints::EnumConnectionPoints(IConnectionPointContainer* container, IEnumConnectionPoints** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  return Guarded([&] {
    std::vector<IConnectionPoint*> items;
    for (auto& point : points_) items.push_back(point.get());
    // The points live as long as their container.
    return PointsEnum::Make(std::move(items), {ComPtr<IUnknown>(container)}, 0, out);
  });
}

}  // namespace brevantis
