#include "braille/win32_koral.h"

#include <windows.h>
#include <ocidl.h>
#include <oleauto.h>

#include <utility>
#include <vector>

#include "platform/win32/kit.h"

namespace nx {

namespace {

constexpr wchar_t kProgId[] = L"KORALCOM.KORAL";
constexpr wchar_t kScreenReaderWindow[] = L"WindowsNarrix";

// The component's event numbers on its display's event interface.
constexpr DISPID kBtnNormal = 1, kBtnCusorStatus = 2, kBtnAuxStatus = 3;

// A VARIANT that clears itself.
struct Variant {
  VARIANT v;
  Variant() { VariantInit(&v); }
  explicit Variant(int32_t value) {
    VariantInit(&v);
    v.vt = VT_I4;
    v.lVal = value;
  }
  ~Variant() { VariantClear(&v); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
};

int32_t ToInt(const VARIANT& value) {
  Variant converted;
  if (FAILED(VariantChangeType(&converted.v, const_cast<VARIANT*>(&value), 0, VT_I4))) return 0;
  return converted.v.lVal;
}

std::wstring ToText(const VARIANT& value) {
  Variant converted;
  if (FAILED(VariantChangeType(&converted.v, const_cast<VARIANT*>(&value), 0, VT_BSTR)) || !converted.v.bstrVal)
    return {};
  return std::wstring(converted.v.bstrVal, SysStringLen(converted.v.bstrVal));
}

// Calls members of an automation object by name; a failed call leaves
// `result` empty.
class Automation {
 public:
  explicit Automation(ComRef<IDispatch> object) : object_(std::move(object)) {}
  IDispatch* Object() const { return object_.Get(); }

  // `args` in the member's order.
  bool Invoke(const wchar_t* name, WORD flags, const std::vector<int32_t>& args, VARIANT* result) {
    DISPID id = 0;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    if (FAILED(object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id))) return false;
    std::vector<VARIANT> list(args.size());
    for (size_t i = 0; i < args.size(); ++i) {  // COM takes the arguments last first
      VariantInit(&list[i]);
      list[i].vt = VT_I4;
      list[i].lVal = args[args.size() - 1 - i];
    }
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS params{list.data(), nullptr, static_cast<UINT>(list.size()), 0};
    if (flags == DISPATCH_PROPERTYPUT) {
      params.rgdispidNamedArgs = &named;
      params.cNamedArgs = 1;
    }
    return SUCCEEDED(object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result, nullptr, nullptr));
  }
  int32_t Int(const wchar_t* name) {
    Variant result;
    return Invoke(name, DISPATCH_PROPERTYGET, {}, &result.v) ? ToInt(result.v) : 0;
  }
  std::wstring Text(const wchar_t* name) {
    Variant result;
    return Invoke(name, DISPATCH_PROPERTYGET, {}, &result.v) ? ToText(result.v) : std::wstring();
  }
  void Call(const wchar_t* name, const std::vector<int32_t>& args = {}) {
    Variant result;
    Invoke(name, DISPATCH_METHOD, args, &result.v);
  }
  void Put(const wchar_t* name, int32_t value) { Invoke(name, DISPATCH_PROPERTYPUT, {value}, nullptr); }

 private:
  ComRef<IDispatch> object_;
};

// Receives the display's events and hands them on while attached. It is
// reference counted, as COM requires; the display detaches it before it
// lets go, so no event reaches a listener that has gone.
class EventSink final : public IDispatch {
 public:
  EventSink(const IID& events, IKoralDisplayEvents& listener) : iid_(events), listener_(&listener) {}
  void Detach() { listener_ = nullptr; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (!object) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IDispatch || riid == iid_) {
      *object = static_cast<IDispatch*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&refs_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG left = InterlockedDecrement(&refs_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count) *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                                   UINT*) override {
    if (!params || !listener_) return S_OK;
    // The arguments come last first.
    const auto arg = [params](UINT i) { return i < params->cArgs ? ArgAt(params->rgvarg[params->cArgs - 1 - i]) : 0; };
    try {
      switch (id) {
        case kBtnNormal:
          listener_->koral_BrailleBtnNormal(arg(0), arg(1), arg(2));
          break;
        case kBtnCusorStatus:
          listener_->koral_BrailleBtnCusorStatus(arg(0), arg(1));
          break;
        case kBtnAuxStatus:
          listener_->koral_BrailleBtnAuxStatus(arg(0), arg(1));
          break;
        default:
          break;
      }
    } catch (...) {
      // The component must not see the program's failures.
    }
    return S_OK;
  }

 private:
  ~EventSink() = default;
  static int32_t ArgAt(const VARIANT& value) {
    Variant direct;
    if (FAILED(VariantCopyInd(&direct.v, const_cast<VARIANT*>(&value)))) return 0;
    return ToInt(direct.v);
  }

  IID iid_;
  IKoralDisplayEvents* listener_;
  LONG refs_ = 1;
};

class Win32KoralDisplay final : public IKoralDisplay {
 public:
  Win32KoralDisplay(ComRef<IDispatch> display, IKoralDisplayEvents& events) : display_(std::move(display)) {
    Connect(events);
  }
  ~Win32KoralDisplay() override {
    if (point_) point_->Unadvise(cookie_);
    if (sink_) {
      sink_->Detach();
      sink_->Release();
    }
  }
  Win32KoralDisplay(const Win32KoralDisplay&) = delete;
  Win32KoralDisplay& operator=(const Win32KoralDisplay&) = delete;

  std::wstring Description() override { return display_.Text(L"Description"); }
  int32_t Width() override { return display_.Int(L"Width"); }
  int32_t Height() override { return display_.Int(L"Height"); }
  int32_t StatusCells() override { return display_.Int(L"StatusCells"); }
  int32_t Caps() override { return display_.Int(L"Caps"); }
  int32_t Languages() override { return display_.Int(L"Languages"); }
  int32_t Buttons() override { return display_.Int(L"Buttons"); }
  int32_t MaxRate() override { return display_.Int(L"MaxRate"); }
  int32_t UnitId() override { return display_.Int(L"UnitId"); }
  void SetButtonEvents(int32_t on) override { display_.Put(L"ButtonEvents", on); }
  void Open() override { display_.Call(L"Open"); }
  void Close() override { display_.Call(L"Close"); }

 private:
  // The display's first event interface is its button events.
  void Connect(IKoralDisplayEvents& events) {
    ComRef<IConnectionPointContainer> container;
    if (FAILED(display_.Object()->QueryInterface(IID_IConnectionPointContainer,
                                                 reinterpret_cast<void**>(container.Out()))))
      return;
    ComRef<IEnumConnectionPoints> points;
    if (FAILED(container->EnumConnectionPoints(points.Out()))) return;
    ComRef<IConnectionPoint> point;
    if (points->Next(1, point.Out(), nullptr) != S_OK) return;
    IID iid{};
    if (FAILED(point->GetConnectionInterface(&iid))) return;
    auto* sink = new EventSink(iid, events);
    if (FAILED(point->Advise(sink, &cookie_))) {
      sink->Detach();
      sink->Release();
      return;
    }
    sink_ = sink;
    point_ = std::move(point);
  }

  Automation display_;
  ComRef<IConnectionPoint> point_;
  EventSink* sink_ = nullptr;
  DWORD cookie_ = 0;
};

class Win32KoralComponent final : public IKoralComponent {
 public:
  explicit Win32KoralComponent(ComRef<IDispatch> root) : root_(std::move(root)) {}
  void Initialize(int32_t mode) override { root_.Call(L"Initialize", {mode}); }
  int32_t DisplayCount() override { return root_.Int(L"DisplayCount"); }
  std::unique_ptr<IKoralDisplay> Display(int32_t index, IKoralDisplayEvents& events) override {
    Variant result;
    if (!root_.Invoke(L"Display", DISPATCH_PROPERTYGET | DISPATCH_METHOD, {index}, &result.v)) return nullptr;
    if (result.v.vt != VT_DISPATCH || !result.v.pdispVal) return nullptr;
    result.v.pdispVal->AddRef();
    return std::make_unique<Win32KoralDisplay>(ComRef<IDispatch>(result.v.pdispVal), events);
  }
  void Shutdown() override { root_.Call(L"Shutdown"); }

 private:
  Automation root_;
};

ComRef<IDispatch> CreateRoot() {
  ComRef<IDispatch> root;
  CLSID clsid{};
  if (FAILED(CLSIDFromProgID(kProgId, &clsid))) return root;
  if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_SERVER, IID_IDispatch, reinterpret_cast<void**>(root.Out()))))
    root.Reset();
  return root;
}

}  // namespace

bool Win32KoralFactory::ScreenReaderRunning() { return FindWindowW(nullptr, kScreenReaderWindow) != nullptr; }

// Asked for by class with no file name, automation hands out a new object
// of the class, whether or not the screen reader is running.
std::unique_ptr<IKoralComponent> Win32KoralFactory::Attach() { return Create(); }

std::unique_ptr<IKoralComponent> Win32KoralFactory::Create() {
  ComRef<IDispatch> root = CreateRoot();
  if (!root) return nullptr;
  return std::make_unique<Win32KoralComponent>(std::move(root));
}

bool Win32KoralFactory::Probe() { return static_cast<bool>(CreateRoot()); }

}  // namespace nx
