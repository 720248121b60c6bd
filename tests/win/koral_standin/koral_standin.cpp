// koral_standin.dll: an in-process automation server that behaves like the
// component of a braille display, as far as the program uses it, so that its
// braille support can be exercised under Wine without the device.
//
// ProgID KORALCOM.KORAL creates the root object (late binding only):
//   Initialize(mode)  DisplayCount  Display(1)  Shutdown()
// The root is its one display as well: Description, UnitId, ButtonEvents
// (written), Open(), Close(), and one connection point for its events:
//   1 BrailleBtnNormal(unitId, buttons, pressed)
//   2 BrailleBtnCusorStatus(unitId, button)
//   3 BrailleBtnAuxStatus(unitId, button)
// Tests press buttons by sending WM_APP+1/2/3 to the hidden window of class
// NxKoralStandIn that an open display owns (nxprobe braille ...): wParam is
// the button (set), the low word of lParam the pressed flag of a normal
// button, the high word, when not zero, the unit to report. The answer is 1
// when the event reached a listener.
//
// NX_KORAL_STANDIN names an ini file: [Display1] Description and UnitId,
// [Koral] InitDelayMs (how long Initialize takes). NX_KORAL_LOG names a file
// that receives a line for Initialize, Open, Close and Shutdown.
#include <windows.h>
#include <ocidl.h>
#include <olectl.h>

#include <string>
#include <utility>
#include <vector>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace {

const wchar_t kClsidText[] = L"{6a7ea2ba-13bf-4058-b8c5-1c510a89b9d6}";
const CLSID kClsid = {0x6a7ea2ba, 0x13bf, 0x4058, {0xb8, 0xc5, 0x1c, 0x51, 0x0a, 0x89, 0xb9, 0xd6}};
// The display's event dispinterface.
const IID kEventsIid = {0x4608a3d1, 0xc916, 0x4511, {0xae, 0x05, 0x4a, 0xc0, 0xca, 0x85, 0xe6, 0xee}};
const wchar_t kWindowClass[] = L"NxKoralStandIn";

std::wstring Environment(const wchar_t* name) {
  wchar_t buffer[MAX_PATH * 2] = {};
  const DWORD length = GetEnvironmentVariableW(name, buffer, MAX_PATH * 2);
  return length < MAX_PATH * 2 ? buffer : L"";
}

// Opened for every line, so that several processes append to the same file.
void Log(const std::string& line) {
  const std::wstring path = Environment(L"NX_KORAL_LOG");
  HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                            FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return;
  DWORD written = 0;
  WriteFile(file, (line + "\r\n").data(), static_cast<DWORD>(line.size() + 2), &written, nullptr);
  CloseHandle(file);
}

enum Member : DISPID {
  kInitialize = 1,
  kDisplayCount,
  kDisplay,
  kShutdown,
  kDescription,
  kUnitId,
  kEvents,
  kOpen,
  kClose
};
struct MemberInfo {
  const wchar_t* name;
  UINT args;
  bool method;  // called as a method only; the others are read as properties (or as methods)
};
const MemberInfo kMembers[] = {{L"Initialize", 1, true},    {L"DisplayCount", 0, false}, {L"Display", 1, false},
                               {L"Shutdown", 0, true},      {L"Description", 0, false},  {L"UnitId", 0, false},
                               {L"ButtonEvents", 0, false}, {L"Open", 0, true},          {L"Close", 0, true}};

LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);

class Koral final : public IDispatch,
                    public IConnectionPointContainer,
                    public IConnectionPoint,
                    public IEnumConnectionPoints {
 public:
  Koral() {
    const std::wstring ini = Environment(L"NX_KORAL_STANDIN");
    wchar_t text[256] = {};
    GetPrivateProfileStringW(L"Display1", L"Description", L"Stand-in 40", text, 256, ini.c_str());
    description_ = text;
    unit_ = static_cast<LONG>(GetPrivateProfileIntW(L"Display1", L"UnitId", 7, ini.c_str()));
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (riid == IID_IUnknown || riid == IID_IDispatch)
      *object = static_cast<IDispatch*>(this);
    else if (riid == IID_IConnectionPointContainer)
      *object = static_cast<IConnectionPointContainer*>(this);
    else if (riid == IID_IConnectionPoint)
      *object = static_cast<IConnectionPoint*>(this);
    else if (riid == IID_IEnumConnectionPoints)
      *object = static_cast<IEnumConnectionPoints*>(this);
    else
      return *object = nullptr, E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&refs_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG refs = InterlockedDecrement(&refs_);
    if (refs == 0) delete this;
    return static_cast<ULONG>(refs);
  }

  // IDispatch, by member names only.
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    for (DISPID id = kInitialize; id <= kClose; ++id)
      if (_wcsicmp(kMembers[id - 1].name, names[0]) == 0) ids[0] = id;
    return ids[0] == DISPID_UNKNOWN || count != 1 ? DISP_E_UNKNOWNNAME : S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    if (id < kInitialize || id > kClose) return DISP_E_MEMBERNOTFOUND;
    if (id == kEvents && flags == DISPATCH_PROPERTYPUT) {
      if (params->cArgs != 1 || params->cNamedArgs != 1 || params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)
        return DISP_E_PARAMNOTFOUND;
      return Long(params->rgvarg[0], &events_);
    }
    const MemberInfo& member = kMembers[id - 1];
    if (!(flags & (member.method ? DISPATCH_METHOD : DISPATCH_METHOD | DISPATCH_PROPERTYGET)))
      return DISP_E_MEMBERNOTFOUND;
    if (params->cArgs != member.args || params->cNamedArgs != 0) return DISP_E_BADPARAMCOUNT;
    LONG arg = 0;
    if (member.args && FAILED(Long(params->rgvarg[0], &arg))) return DISP_E_TYPEMISMATCH;
    VARIANT ignored;
    if (!result) result = &ignored;
    V_VT(result) = VT_I4;
    switch (id) {
      case kInitialize:
        Log("Initialize " + std::to_string(arg));
        // A real display can take seconds to answer.
        Sleep(GetPrivateProfileIntW(L"Koral", L"InitDelayMs", 0, Environment(L"NX_KORAL_STANDIN").c_str()));
        break;
      case kDisplayCount:
        V_I4(result) = 1;
        break;
      case kDisplay:
        if (arg != 1) return DISP_E_BADINDEX;
        V_VT(result) = VT_DISPATCH;
        V_DISPATCH(result) = this;
        AddRef();
        break;
      case kShutdown:
        Log("Shutdown");
        break;
      case kDescription:
        V_VT(result) = VT_BSTR;
        V_BSTR(result) = SysAllocString(description_.c_str());
        break;
      case kUnitId:
        V_I4(result) = unit_;
        break;
      case kEvents:
        V_I4(result) = events_;
        break;
      case kOpen:
        Log("Open " + std::to_string(unit_));
        return OpenWindow();
      case kClose:
        Log("Close " + std::to_string(unit_));
        CloseWindow();
        break;
    }
    if (result == &ignored) VariantClear(&ignored);
    return S_OK;
  }

  // IConnectionPointContainer, whose one connection point is this object.
  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override {
    return QueryInterface(IID_IEnumConnectionPoints, reinterpret_cast<void**>(points));
  }
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID, IConnectionPoint**) override { return E_NOTIMPL; }

  // IEnumConnectionPoints
  HRESULT STDMETHODCALLTYPE Next(ULONG count, IConnectionPoint** points, ULONG* fetched) override {
    if (fetched) *fetched = count ? 1 : 0;
    if (count == 0) return S_FALSE;
    QueryInterface(IID_IConnectionPoint, reinterpret_cast<void**>(points));
    return count == 1 ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reset() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Clone(IEnumConnectionPoints**) override { return E_NOTIMPL; }

  // IConnectionPoint
  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override { return *iid = kEventsIid, S_OK; }
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override {
    IDispatch* dispatch = nullptr;
    if (FAILED(sink->QueryInterface(kEventsIid, reinterpret_cast<void**>(&dispatch)))) return CONNECT_E_CANNOTCONNECT;
    sinks_.emplace_back(*cookie = next_cookie_++, dispatch);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override {
    for (auto it = sinks_.begin(); it != sinks_.end(); ++it) {
      if (it->first != cookie) continue;
      IDispatch* sink = it->second;
      sinks_.erase(it);
      sink->Release();  // last: it may call back here
      return S_OK;
    }
    return CONNECT_E_NOCONNECTION;
  }
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections**) override { return E_NOTIMPL; }

  // A button message from a test: the event to every listener of the moment.
  LRESULT Press(UINT message, WPARAM wparam, LPARAM lparam) {
    if (!events_) return 0;
    const LONG values[] = {HIWORD(lparam) ? HIWORD(lparam) : unit_, static_cast<LONG>(wparam), LOWORD(lparam)};
    const UINT count = message == WM_APP + 1 ? 3 : 2;
    VARIANTARG args[3] = {};
    for (UINT i = 0; i < count; ++i) {  // the arguments last first
      V_VT(&args[count - 1 - i]) = VT_I4;
      V_I4(&args[count - 1 - i]) = values[i];
    }
    DISPPARAMS params = {args, nullptr, count, 0};
    AddRef();
    std::vector<std::pair<DWORD, IDispatch*>> sinks = sinks_;
    for (auto& sink : sinks) sink.second->AddRef();
    for (auto& sink : sinks) {
      sink.second->Invoke(static_cast<DISPID>(message - WM_APP), IID_NULL, 0, DISPATCH_METHOD, &params, nullptr,
                          nullptr, nullptr);
      sink.second->Release();
    }
    Release();
    return sinks.empty() ? 0 : 1;
  }
  void ForgetWindow() { window_ = nullptr; }

 private:
  ~Koral() {
    CloseWindow();
    for (auto& sink : sinks_) sink.second->Release();
  }

  static HRESULT Long(VARIANTARG& arg, LONG* value) {
    VARIANT converted;
    VariantInit(&converted);
    const HRESULT hr = VariantChangeType(&converted, &arg, 0, VT_I4);
    if (SUCCEEDED(hr)) *value = V_I4(&converted);
    return hr;
  }

  // Top-level and never shown, so that nxprobe finds it with EnumWindows. Its
  // messages arrive on the thread that opened the display, as a real
  // display's events do.
  HRESULT OpenWindow() {
    if (window_) return S_OK;
    const auto module = reinterpret_cast<HINSTANCE>(&__ImageBase);
    WNDCLASSW wc{};
    wc.lpfnWndProc = WindowProc;
    wc.hInstance = module;
    wc.lpszClassName = kWindowClass;
    RegisterClassW(&wc);
    window_ = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kWindowClass, L"Koral stand-in", WS_POPUP, 0, 0, 0,
                              0, nullptr, nullptr, module, this);
    return window_ ? S_OK : HRESULT_FROM_WIN32(GetLastError());
  }
  void CloseWindow() {
    if (!window_) return;
    SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    DestroyWindow(std::exchange(window_, nullptr));
  }

  LONG refs_ = 1, unit_ = 7, events_ = 0;
  std::wstring description_;
  std::vector<std::pair<DWORD, IDispatch*>> sinks_;
  DWORD next_cookie_ = 1;
  HWND window_ = nullptr;
};

LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_NCCREATE)
    SetWindowLongPtrW(hwnd, GWLP_USERDATA,
                      reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lparam)->lpCreateParams));
  auto* koral = reinterpret_cast<Koral*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  if (koral && message >= WM_APP + 1 && message <= WM_APP + 3) return koral->Press(message, wparam, lparam);
  if (koral && message == WM_NCDESTROY) koral->ForgetWindow();
  return DefWindowProcW(hwnd, message, wparam, lparam);
}

// One static factory; the DLL stays loaded.
class ClassFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (riid != IID_IUnknown && riid != IID_IClassFactory) return *object = nullptr, E_NOINTERFACE;
    *object = this;
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    *object = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    Koral* koral = new Koral();
    const HRESULT hr = koral->QueryInterface(riid, object);
    koral->Release();
    return hr;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

ClassFactory g_factory;

}  // namespace

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* object) {
  if (clsid != kClsid) return *object = nullptr, CLASS_E_CLASSNOTAVAILABLE;
  return g_factory.QueryInterface(riid, object);
}

STDAPI DllCanUnloadNow() { return S_FALSE; }

STDAPI DllRegisterServer() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(reinterpret_cast<HINSTANCE>(&__ImageBase), path, MAX_PATH);
  const std::wstring clsid = std::wstring(L"CLSID\\") + kClsidText;
  const std::wstring values[][3] = {{L"KORALCOM.KORAL\\CLSID", L"", kClsidText},
                                    {clsid + L"\\InprocServer32", L"", path},
                                    {clsid + L"\\InprocServer32", L"ThreadingModel", L"Apartment"}};
  for (const auto& v : values)
    if (RegSetKeyValueW(HKEY_CLASSES_ROOT, v[0].c_str(), v[1].empty() ? nullptr : v[1].c_str(), REG_SZ, v[2].c_str(),
                        static_cast<DWORD>((v[2].size() + 1) * sizeof(wchar_t))) != ERROR_SUCCESS)
      return SELFREG_E_CLASS;
  return S_OK;
}
