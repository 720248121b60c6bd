// koral_standin.dll: an in-process automation server that behaves like the
// component of a braille display, so that the program's braille support can
// be exercised under Wine without the device.
//
// ProgID KORALCOM.KORAL creates the root object (late binding only):
//   Initialize(mode)  DisplayCount  Display(index from 1)  Shutdown()
// Each display object has the properties Description, Width, Height,
// StatusCells, Caps, Languages, Buttons, MaxRate, UnitId and ButtonEvents
// (read and write), the methods Open() and Close(), and one connection point
// for its event interface:
//   1 BrailleBtnNormal(unitId, buttons, pressed)
//   2 BrailleBtnCusorStatus(unitId, button)
//   3 BrailleBtnAuxStatus(unitId, button)
// Tests press buttons by sending WM_APP+1/2/3 to the hidden window of class
// NxKoralStandIn that an open display owns (nxprobe braille ...): wParam is
// the button (set), the low word of lParam the pressed flag of a normal
// button, the high word, when not zero, the unit to report.
//
// NX_KORAL_STANDIN names an ini file describing the displays ([Koral]
// Displays, [DisplayN] keys as the property names); NX_KORAL_LOG names a file
// that receives one line per call, so tests can see what the program asked.
#include <windows.h>
#include <ocidl.h>
#include <olectl.h>

#include <cwchar>
#include <initializer_list>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace {

// {6a7ea2ba-13bf-4058-b8c5-1c510a89b9d6}
const CLSID kClsid = {0x6a7ea2ba, 0x13bf, 0x4058, {0xb8, 0xc5, 0x1c, 0x51, 0x0a, 0x89, 0xb9, 0xd6}};
const wchar_t kClsidText[] = L"{6a7ea2ba-13bf-4058-b8c5-1c510a89b9d6}";
const wchar_t kProgId[] = L"KORALCOM.KORAL";
// {4608a3d1-c916-4511-ae05-4ac0ca85e6ee}: the display's event dispinterface.
const IID kEventsIid = {0x4608a3d1, 0xc916, 0x4511, {0xae, 0x05, 0x4a, 0xc0, 0xca, 0x85, 0xe6, 0xee}};

const wchar_t kWindowClass[] = L"NxKoralStandIn";
constexpr UINT kMsgNormal = WM_APP + 1;
constexpr UINT kMsgCursor = WM_APP + 2;
constexpr UINT kMsgAux = WM_APP + 3;

constexpr DISPID kEventNormal = 1;
constexpr DISPID kEventCursor = 2;
constexpr DISPID kEventAux = 3;

HMODULE g_module = nullptr;
// Live objects (the class factory's references included) and LockServer
// locks; the DLL may be unloaded only when both are zero.
LONG g_objects = 0;
LONG g_locks = 0;

std::wstring Environment(const wchar_t* name) {
  wchar_t buffer[MAX_PATH * 2];
  const DWORD length = GetEnvironmentVariableW(name, buffer, MAX_PATH * 2);
  if (length == 0 || length >= MAX_PATH * 2) return std::wstring();
  return std::wstring(buffer, length);
}

// The log is opened for every line, so several processes and objects can
// append to the same file without sharing a handle.
void Log(const std::wstring& line) noexcept {
  try {
    const std::wstring path = Environment(L"NX_KORAL_LOG");
    if (path.empty()) return;
    const std::wstring text = line + L"\r\n";
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), &bytes[0], size, nullptr, nullptr);
    // FILE_APPEND_DATA without FILE_WRITE_DATA makes every write land at the
    // end, even when another process wrote in between.
    HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return;
    DWORD written = 0;
    WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
    CloseHandle(file);
  } catch (...) {
    // A log line that cannot be made is dropped; the call itself goes on.
  }
}

void Log(const wchar_t* what, LONG value) { Log(std::wstring(what) + L" " + std::to_wstring(value)); }

struct DisplayConfig {
  std::wstring description = L"Stand-in 40";
  LONG width = 40;
  LONG height = 1;
  LONG status_cells = 4;
  LONG caps = 0x26;
  LONG languages = 2;
  LONG buttons = 12;
  LONG max_rate = 10;
  LONG unit_id = 7;
};

// GetPrivateProfileIntW reads decimal only; the values may be written in
// hexadecimal ("0x26"), so the text is parsed here.
LONG ReadLong(const std::wstring& file, const wchar_t* section, const wchar_t* key, LONG fallback) {
  wchar_t text[64] = {};
  GetPrivateProfileStringW(section, key, L"", text, 64, file.c_str());
  wchar_t* end = nullptr;
  const long value = std::wcstol(text, &end, 0);
  return end == text ? fallback : static_cast<LONG>(value);
}

std::vector<DisplayConfig> ReadConfig() {
  const std::wstring file = Environment(L"NX_KORAL_STANDIN");
  if (file.empty()) return std::vector<DisplayConfig>(1);
  LONG count = ReadLong(file, L"Koral", L"Displays", 1);
  if (count < 0) count = 0;
  if (count > 64) count = 64;
  std::vector<DisplayConfig> displays(static_cast<size_t>(count));
  for (LONG i = 0; i < count; ++i) {
    DisplayConfig& d = displays[static_cast<size_t>(i)];
    const std::wstring section = L"Display" + std::to_wstring(i + 1);
    wchar_t text[256] = {};
    GetPrivateProfileStringW(section.c_str(), L"Description", d.description.c_str(), text, 256, file.c_str());
    d.description = text;
    d.width = ReadLong(file, section.c_str(), L"Width", d.width);
    d.height = ReadLong(file, section.c_str(), L"Height", d.height);
    d.status_cells = ReadLong(file, section.c_str(), L"StatusCells", d.status_cells);
    d.caps = ReadLong(file, section.c_str(), L"Caps", d.caps);
    d.languages = ReadLong(file, section.c_str(), L"Languages", d.languages);
    d.buttons = ReadLong(file, section.c_str(), L"Buttons", d.buttons);
    d.max_rate = ReadLong(file, section.c_str(), L"MaxRate", d.max_rate);
    d.unit_id = ReadLong(file, section.c_str(), L"UnitId", d.unit_id);
  }
  return displays;
}

// ---------------------------------------------------------------------------
// Late binding helpers.

struct Member {
  const wchar_t* name;
  DISPID id;
};

template <size_t N>
HRESULT LookUpNames(const Member (&members)[N], LPOLESTR* names, UINT count, DISPID* ids) {
  if (!names || !ids) return E_POINTER;
  HRESULT result = S_OK;
  for (UINT i = 0; i < count; ++i) {
    ids[i] = DISPID_UNKNOWN;
    // Only the first name is a member; the others would name parameters,
    // and no member takes named parameters.
    if (i == 0 && names[0]) {
      for (const Member& member : members)
        if (_wcsicmp(member.name, names[0]) == 0) ids[0] = member.id;
    }
    if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
  }
  return result;
}

enum class Kind { kGet, kMethod, kGetOrMethod };

// Whether a call of the given kind with `count` positional arguments may go
// ahead. Property puts are checked by the one member that has one.
HRESULT CheckCall(Kind kind, WORD flags, const DISPPARAMS& params, UINT count) {
  WORD allowed = 0;
  switch (kind) {
    case Kind::kGet:
    case Kind::kGetOrMethod:
      // Many callers ask for a property with DISPATCH_METHOD as well.
      allowed = DISPATCH_PROPERTYGET | DISPATCH_METHOD;
      break;
    case Kind::kMethod:
      allowed = DISPATCH_METHOD;
      break;
  }
  if (!(flags & allowed)) return DISP_E_MEMBERNOTFOUND;
  if (params.cNamedArgs != 0) return DISP_E_NONAMEDARGS;
  if (params.cArgs != count) return DISP_E_BADPARAMCOUNT;
  return S_OK;
}

// Any integer (or number that converts to one), also passed by reference.
HRESULT ToLong(const VARIANTARG& arg, LONG* value) {
  VARIANT converted;
  VariantInit(&converted);
  HRESULT hr = VariantChangeType(&converted, const_cast<VARIANTARG*>(&arg), 0, VT_I4);
  if (FAILED(hr)) return hr == DISP_E_OVERFLOW ? hr : DISP_E_TYPEMISMATCH;
  *value = V_I4(&converted);
  return S_OK;
}

// Positional argument `position` (0 = the first parameter); COM stores them
// last first.
HRESULT LongArgument(const DISPPARAMS& params, UINT position, LONG* value, UINT* arg_err) {
  const UINT index = params.cArgs - 1 - position;
  const HRESULT hr = ToLong(params.rgvarg[index], value);
  if (FAILED(hr) && arg_err) *arg_err = index;
  return hr;
}

void SetLong(VARIANT* result, LONG value) {
  if (!result) return;
  V_VT(result) = VT_I4;
  V_I4(result) = value;
}

// IDispatch by member names, no type information: `Derived` has the table
// kMembers and Call(), and is counted and deleted here.
template <typename Derived>
class Automation : public IDispatch {
 public:
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&refs_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG refs = InterlockedDecrement(&refs_);
    if (refs == 0) delete static_cast<Derived*>(this);
    return static_cast<ULONG>(refs);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
    if (info) *info = nullptr;
    return DISP_E_BADINDEX;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    return LookUpNames(Derived::kMembers, names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID, WORD flags, DISPPARAMS* params, VARIANT* result,
                                   EXCEPINFO*, UINT* arg_err) override {
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (!params) return E_POINTER;
    try {
      return static_cast<Derived*>(this)->Call(id, flags, *params, result, arg_err);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }

 protected:
  Automation() = default;
  ~Automation() = default;

 private:
  LONG refs_ = 1;
};

// ---------------------------------------------------------------------------

class Display;

// The display's only connection point. It lives inside the display and
// shares its reference count, so handing it out keeps the display alive
// without a cycle; it answers QueryInterface for itself only.
class ConnectionPoint final : public IConnectionPoint {
 public:
  explicit ConnectionPoint(Display* owner) : owner_(owner) {}
  ~ConnectionPoint() { DropAll(); }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;

  HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* iid) override {
    if (!iid) return E_POINTER;
    *iid = kEventsIid;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) override;
  HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
  HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
  HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** connections) override {
    if (connections) *connections = nullptr;
    return E_NOTIMPL;
  }

  // Invokes `id` on every sink; the number of sinks that were called.
  int Fire(DISPID id, std::initializer_list<LONG> args);

 private:
  void DropAll() {
    for (auto& sink : sinks_) sink.second->Release();
    sinks_.clear();
  }

  Display* owner_;
  std::vector<std::pair<DWORD, IDispatch*>> sinks_;
  DWORD next_cookie_ = 1;
};

// Enumerates the one connection point of a display.
class ConnectionPointEnum final : public IEnumConnectionPoints {
 public:
  ConnectionPointEnum(IConnectionPoint* point, ULONG position) : point_(point), position_(position) {
    point_->AddRef();
    InterlockedIncrement(&g_objects);
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (!object) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IEnumConnectionPoints)) {
      *object = static_cast<IEnumConnectionPoints*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&refs_)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG refs = InterlockedDecrement(&refs_);
    if (refs == 0) delete this;
    return static_cast<ULONG>(refs);
  }

  HRESULT STDMETHODCALLTYPE Next(ULONG count, IConnectionPoint** points, ULONG* fetched) override {
    if (!points || (count > 1 && !fetched)) return E_POINTER;
    ULONG given = 0;
    if (count > 0 && position_ == 0) {
      points[0] = point_;
      point_->AddRef();
      position_ = 1;
      given = 1;
    }
    if (fetched) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    const ULONG left = 1 - position_;
    position_ = count >= left ? 1 : position_ + count;
    return count <= left ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    position_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumConnectionPoints** copy) override {
    if (!copy) return E_POINTER;
    *copy = new (std::nothrow) ConnectionPointEnum(point_, position_);
    return *copy ? S_OK : E_OUTOFMEMORY;
  }

 private:
  ~ConnectionPointEnum() {
    point_->Release();
    InterlockedDecrement(&g_objects);
  }

  LONG refs_ = 1;
  IConnectionPoint* point_;
  ULONG position_;
};

LRESULT CALLBACK DisplayWindowProc(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam);

class Display final : public Automation<Display>, public IConnectionPointContainer {
 public:
  explicit Display(DisplayConfig config) : config_(std::move(config)), point_(this) {
    InterlockedIncrement(&g_objects);
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (!object) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch)) {
      *object = static_cast<IDispatch*>(this);
    } else if (IsEqualIID(riid, IID_IConnectionPointContainer)) {
      *object = static_cast<IConnectionPointContainer*>(this);
    } else {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  // One count for both interfaces.
  ULONG STDMETHODCALLTYPE AddRef() override { return Automation::AddRef(); }
  ULONG STDMETHODCALLTYPE Release() override { return Automation::Release(); }

  HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** points) override {
    if (!points) return E_POINTER;
    *points = new (std::nothrow) ConnectionPointEnum(&point_, 0);
    return *points ? S_OK : E_OUTOFMEMORY;
  }
  HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID riid, IConnectionPoint** point) override {
    if (!point) return E_POINTER;
    if (!IsEqualIID(riid, kEventsIid)) {
      *point = nullptr;
      return CONNECT_E_NOCONNECTION;
    }
    *point = &point_;
    point_.AddRef();
    return S_OK;
  }

  // A button message from a test; 1 when an event reached a sink.
  LRESULT OnButtonMessage(UINT message, WPARAM wparam, LPARAM lparam) {
    if (!button_events_) return 0;
    const LONG button = static_cast<LONG>(static_cast<DWORD>(wparam));
    const LONG other_unit = static_cast<LONG>((static_cast<DWORD_PTR>(lparam) >> 16) & 0xFFFF);
    const LONG unit = other_unit ? other_unit : config_.unit_id;
    // A sink may let go of the display while it handles the event.
    AddRef();
    int reached = 0;
    switch (message) {
      case kMsgNormal:
        reached = point_.Fire(kEventNormal, {unit, button, static_cast<LONG>(LOWORD(lparam))});
        break;
      case kMsgCursor:
        reached = point_.Fire(kEventCursor, {unit, button});
        break;
      case kMsgAux:
        reached = point_.Fire(kEventAux, {unit, button});
        break;
    }
    Release();
    return reached > 0 ? 1 : 0;
  }

  // The window is going away without Close() (its thread ends, say).
  void ForgetWindow() { window_ = nullptr; }

 private:
  friend class Automation<Display>;
  enum : DISPID {
    kDescription = 1,
    kWidth,
    kHeight,
    kStatusCells,
    kCaps,
    kLanguages,
    kButtons,
    kMaxRate,
    kUnitId,
    kButtonEvents,
    kOpen,
    kClose,
  };
  static constexpr Member kMembers[] = {
      {L"Description", kDescription},   {L"Width", kWidth},     {L"Height", kHeight},
      {L"StatusCells", kStatusCells},   {L"Caps", kCaps},       {L"Languages", kLanguages},
      {L"Buttons", kButtons},           {L"MaxRate", kMaxRate}, {L"UnitId", kUnitId},
      {L"ButtonEvents", kButtonEvents}, {L"Open", kOpen},       {L"Close", kClose},
  };

  ~Display() {
    CloseWindow();
    InterlockedDecrement(&g_objects);
  }

  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result, UINT* arg_err) {
    if (id == kButtonEvents && (flags & DISPATCH_PROPERTYPUT)) {
      if (params.cArgs != 1) return DISP_E_BADPARAMCOUNT;
      if (params.cNamedArgs != 1 || !params.rgdispidNamedArgs || params.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT)
        return DISP_E_PARAMNOTFOUND;
      LONG value = 0;
      const HRESULT hr = ToLong(params.rgvarg[0], &value);
      if (FAILED(hr)) {
        if (arg_err) *arg_err = 0;
        return hr;
      }
      button_events_ = value;
      Log(L"ButtonEvents", value);
      return S_OK;
    }
    const Kind kind = id == kOpen || id == kClose ? Kind::kMethod : Kind::kGet;
    if (id < kDescription || id > kClose) return DISP_E_MEMBERNOTFOUND;
    const HRESULT hr = CheckCall(kind, flags, params, 0);
    if (FAILED(hr)) return hr;
    switch (id) {
      case kDescription:
        if (result) {
          V_VT(result) = VT_BSTR;
          V_BSTR(result) = SysAllocString(config_.description.c_str());
          if (!V_BSTR(result)) {
            V_VT(result) = VT_EMPTY;
            return E_OUTOFMEMORY;
          }
        }
        return S_OK;
      case kWidth:
        SetLong(result, config_.width);
        return S_OK;
      case kHeight:
        SetLong(result, config_.height);
        return S_OK;
      case kStatusCells:
        SetLong(result, config_.status_cells);
        return S_OK;
      case kCaps:
        SetLong(result, config_.caps);
        return S_OK;
      case kLanguages:
        SetLong(result, config_.languages);
        return S_OK;
      case kButtons:
        SetLong(result, config_.buttons);
        return S_OK;
      case kMaxRate:
        SetLong(result, config_.max_rate);
        return S_OK;
      case kUnitId:
        SetLong(result, config_.unit_id);
        return S_OK;
      case kButtonEvents:
        SetLong(result, button_events_);
        return S_OK;
      case kOpen:
        Log(L"Open", config_.unit_id);
        return OpenWindow();
      case kClose:
        Log(L"Close", config_.unit_id);
        CloseWindow();
        return S_OK;
    }
    return DISP_E_MEMBERNOTFOUND;
  }

  // The window receives the test's button messages on the thread that opened
  // the display, which is where a real display's events arrive too.
  HRESULT OpenWindow() {
    if (window_) return S_OK;
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof(wc);
    wc.lpfnWndProc = DisplayWindowProc;
    wc.hInstance = g_module;
    wc.lpszClassName = kWindowClass;
    if (!RegisterClassExW(&wc) && GetLastError() != ERROR_CLASS_ALREADY_EXISTS)
      return HRESULT_FROM_WIN32(GetLastError());
    const std::wstring title = L"Koral stand-in " + std::to_wstring(config_.unit_id);
    // Top-level (not message-only) so that EnumWindows and FindWindow find
    // it; never shown, and not activatable should anyone show it.
    window_ = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kWindowClass, title.c_str(), WS_POPUP, 0, 0, 0, 0,
                              nullptr, nullptr, g_module, this);
    return window_ ? S_OK : HRESULT_FROM_WIN32(GetLastError());
  }

  void CloseWindow() {
    HWND window = window_;
    if (!window) return;
    window_ = nullptr;
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    // Only the owning thread can destroy a window; elsewhere it is asked to.
    if (GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId())
      DestroyWindow(window);
    else
      PostMessageW(window, WM_CLOSE, 0, 0);
  }

  DisplayConfig config_;
  ConnectionPoint point_;
  LONG button_events_ = 0;
  HWND window_ = nullptr;
};

LRESULT CALLBACK DisplayWindowProc(HWND hwnd, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_NCCREATE) {
    const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lparam);
    SetWindowLongPtrW(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
  }
  auto* display = reinterpret_cast<Display*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
  switch (message) {
    case kMsgNormal:
    case kMsgCursor:
    case kMsgAux:
      if (!display) return 0;
      try {
        return display->OnButtonMessage(message, wparam, lparam);
      } catch (...) {
        return 0;
      }
    case WM_NCDESTROY:
      if (display) display->ForgetWindow();
      break;
  }
  return DefWindowProcW(hwnd, message, wparam, lparam);
}

HRESULT STDMETHODCALLTYPE ConnectionPoint::QueryInterface(REFIID riid, void** object) {
  if (!object) return E_POINTER;
  if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IConnectionPoint)) {
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE ConnectionPoint::AddRef() { return owner_->AddRef(); }
ULONG STDMETHODCALLTYPE ConnectionPoint::Release() { return owner_->Release(); }

HRESULT STDMETHODCALLTYPE ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (!container) return E_POINTER;
  *container = owner_;
  owner_->AddRef();
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (cookie) *cookie = 0;
  if (!sink || !cookie) return E_POINTER;
  void* found = nullptr;
  if (FAILED(sink->QueryInterface(kEventsIid, &found)) || !found) {
    found = nullptr;
    if (FAILED(sink->QueryInterface(IID_IDispatch, &found)) || !found) return CONNECT_E_CANNOTCONNECT;
  }
  auto* dispatch = static_cast<IDispatch*>(found);
  try {
    sinks_.emplace_back(next_cookie_, dispatch);
  } catch (...) {
    dispatch->Release();
    return E_OUTOFMEMORY;
  }
  *cookie = next_cookie_++;
  Log(L"Advise");
  return S_OK;
}

HRESULT STDMETHODCALLTYPE ConnectionPoint::Unadvise(DWORD cookie) {
  for (auto it = sinks_.begin(); it != sinks_.end(); ++it) {
    if (it->first != cookie) continue;
    IDispatch* sink = it->second;
    sinks_.erase(it);
    Log(L"Unadvise");
    // Last, because the sink's release may run code that calls back here.
    sink->Release();
    return S_OK;
  }
  return CONNECT_E_NOCONNECTION;
}

int ConnectionPoint::Fire(DISPID id, std::initializer_list<LONG> args) {
  VARIANTARG values[3];
  UINT count = 0;
  for (LONG value : args) {
    if (count == 3) break;
    VariantInit(&values[count]);
    V_VT(&values[count]) = VT_I4;
    V_I4(&values[count]) = value;
    ++count;
  }
  // DISPPARAMS holds the last parameter first.
  for (UINT i = 0; i < count / 2; ++i) std::swap(values[i], values[count - 1 - i]);
  DISPPARAMS params = {values, nullptr, count, 0};
  // A sink may advise or unadvise while it handles the event, so the calls
  // go to the sinks of the moment the event was raised.
  std::vector<IDispatch*> sinks;
  sinks.reserve(sinks_.size());
  for (auto& sink : sinks_) {
    sink.second->AddRef();
    sinks.push_back(sink.second);
  }
  for (IDispatch* sink : sinks) {
    VARIANT result;
    VariantInit(&result);
    UINT arg_err = 0;
    sink->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, &result, nullptr, &arg_err);
    VariantClear(&result);
    sink->Release();
  }
  return static_cast<int>(sinks.size());
}

// ---------------------------------------------------------------------------

class Root final : public Automation<Root> {
 public:
  Root() { InterlockedIncrement(&g_objects); }

  // Separate from construction so that a failure is a result, not a throw.
  HRESULT Load() {
    try {
      for (DisplayConfig& config : ReadConfig()) {
        auto* display = new (std::nothrow) Display(std::move(config));
        if (!display) return E_OUTOFMEMORY;
        displays_.push_back(display);
      }
    } catch (...) {
      return E_OUTOFMEMORY;
    }
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (!object) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch)) {
      *object = static_cast<IDispatch*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }

 private:
  friend class Automation<Root>;
  enum : DISPID { kInitialize = 1, kDisplayCount, kDisplay, kShutdown };
  static constexpr Member kMembers[] = {
      {L"Initialize", kInitialize},
      {L"DisplayCount", kDisplayCount},
      {L"Display", kDisplay},
      {L"Shutdown", kShutdown},
  };

  ~Root() {
    for (Display* display : displays_) display->Release();
    InterlockedDecrement(&g_objects);
  }

  HRESULT Call(DISPID id, WORD flags, const DISPPARAMS& params, VARIANT* result, UINT* arg_err) {
    HRESULT hr = S_OK;
    switch (id) {
      case kInitialize: {
        if (FAILED(hr = CheckCall(Kind::kMethod, flags, params, 1))) return hr;
        LONG mode = 0;
        if (FAILED(hr = LongArgument(params, 0, &mode, arg_err))) return hr;
        Log(L"Initialize", mode);
        // A real display can take seconds to answer; [Koral] InitDelayMs
        // lets a test see what the program shows meanwhile.
        const std::wstring file = Environment(L"NX_KORAL_STANDIN");
        if (!file.empty()) Sleep(static_cast<DWORD>(ReadLong(file, L"Koral", L"InitDelayMs", 0)));
        return S_OK;
      }
      case kDisplayCount: {
        if (FAILED(hr = CheckCall(Kind::kGet, flags, params, 0))) return hr;
        const LONG count = static_cast<LONG>(displays_.size());
        Log(L"DisplayCount", count);
        SetLong(result, count);
        return S_OK;
      }
      case kDisplay: {
        if (FAILED(hr = CheckCall(Kind::kGetOrMethod, flags, params, 1))) return hr;
        LONG index = 0;
        if (FAILED(hr = LongArgument(params, 0, &index, arg_err))) return hr;
        Log(L"Display", index);
        if (index < 1 || index > static_cast<LONG>(displays_.size())) return DISP_E_BADINDEX;
        if (result) {
          Display* display = displays_[static_cast<size_t>(index - 1)];
          display->AddRef();
          V_VT(result) = VT_DISPATCH;
          V_DISPATCH(result) = display;
        }
        return S_OK;
      }
      case kShutdown:
        if (FAILED(hr = CheckCall(Kind::kMethod, flags, params, 0))) return hr;
        Log(L"Shutdown");
        return S_OK;
    }
    return DISP_E_MEMBERNOTFOUND;
  }

  // The same object for the same index, so that whoever connects to a
  // display gets the events of the display it asked for.
  std::vector<Display*> displays_;
};

class ClassFactory final : public IClassFactory {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
    if (!object) return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IClassFactory)) {
      *object = static_cast<IClassFactory*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  // One static factory: its references only keep the DLL loaded.
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&g_objects)); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(InterlockedDecrement(&g_objects)); }

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** object) override {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    Root* root = new (std::nothrow) Root();
    if (!root) return E_OUTOFMEMORY;
    HRESULT hr = root->Load();
    if (SUCCEEDED(hr)) hr = root->QueryInterface(riid, object);
    root->Release();
    return hr;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    if (lock)
      InterlockedIncrement(&g_locks);
    else
      InterlockedDecrement(&g_locks);
    return S_OK;
  }
};

ClassFactory g_factory;

LSTATUS SetString(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
  return RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, value.c_str(),
                         static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
  if (reason == DLL_PROCESS_ATTACH) {
    g_module = instance;
    DisableThreadLibraryCalls(instance);
  } else if (reason == DLL_PROCESS_DETACH && !reserved) {
    // Unloaded while the process goes on: the class must not outlive its
    // window procedure. No window is left, since no object is.
    UnregisterClassW(kWindowClass, instance);
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (!IsEqualCLSID(clsid, kClsid)) return CLASS_E_CLASSNOTAVAILABLE;
  return g_factory.QueryInterface(riid, object);
}

STDAPI DllCanUnloadNow() { return g_objects == 0 && g_locks == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(g_module, path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return SELFREG_E_CLASS;
  try {
    const std::wstring clsid_key = std::wstring(L"CLSID\\") + kClsidText;
    const LSTATUS results[] = {
        SetString(kProgId, nullptr, L"Koral braille display (stand-in)"),
        SetString(std::wstring(kProgId) + L"\\CLSID", nullptr, kClsidText),
        SetString(clsid_key, nullptr, L"Koral braille display (stand-in)"),
        SetString(clsid_key + L"\\ProgID", nullptr, kProgId),
        SetString(clsid_key + L"\\InprocServer32", nullptr, path),
        SetString(clsid_key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"),
    };
    for (LSTATUS status : results)
      if (status != ERROR_SUCCESS) return SELFREG_E_CLASS;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

STDAPI DllUnregisterServer() {
  wchar_t clsid_key[64] = L"CLSID\\";
  wcscat_s(clsid_key, 64, kClsidText);
  const LSTATUS a = RegDeleteTreeW(HKEY_CLASSES_ROOT, clsid_key);
  const LSTATUS b = RegDeleteTreeW(HKEY_CLASSES_ROOT, kProgId);
  const auto ok = [](LSTATUS s) { return s == ERROR_SUCCESS || s == ERROR_FILE_NOT_FOUND; };
  return ok(a) && ok(b) ? S_OK : SELFREG_E_CLASS;
}
