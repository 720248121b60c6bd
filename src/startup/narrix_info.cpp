#include "startup/narrix_info.h"

#include <utility>

#include "platform/text.h"
#include "startup/file_helpers.h"
#include "startup/settings.h"

namespace nx {

cNarrixInfo::cNarrixInfo(IRegistry& registry, std::wstring exeFolder)
    : registry_(registry), exeFolder_(std::move(exeFolder)) {}

void cNarrixInfo::Inicialize(void* form) {
  frmMain_ = form;
  dirVelkor_ = Product(L"Path", L"");
  if (dirVelkor_.empty()) dirVelkor_ = exeFolder_;
  if (!dirVelkor_.empty() && dirVelkor_.back() == L'\\') dirVelkor_.pop_back();
  dirNx_ = Product(L"NxPath", dirVelkor_);
  // ExitDirect belongs to the maker's key, not to the product's.
  exitDirect_ = GetRegBool(registry_, kMakerKey, L"", L"ExitDirect", false);
  srFlag_ = GetRegBool(registry_, kProductKey, L"", L"ScreenReaderFlag", true);
  setFolderName_ = kSetFolder;
  soundFolderName_ = L"Sound";
}

std::wstring cNarrixInfo::Product(const std::wstring& valueName, const std::wstring& def) const {
  return GetRegValue(registry_, kProductKey, L"", valueName, def);
}

std::wstring cNarrixInfo::DirSet() const { return JoinPath(dirVelkor_, setFolderName_); }
std::wstring cNarrixInfo::DirSound() const { return JoinPath(dirVelkor_, soundFolderName_); }

std::wstring cNarrixInfo::FileNameWork() const {
  const std::wstring documents = GetRegValue(
      registry_, L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", L"", L"Personal", L"");
  const std::wstring path = JoinPath(documents, Product(L"FileTemp", L"Work\\Info.txt"));
  MakePath(FolderOf(path));
  return path;
}

std::wstring cNarrixInfo::AppViewer() const { return Product(L"AppViever", L"notepad %1"); }
std::wstring cNarrixInfo::AppHelpViewer() const {
  return Product(L"AppHelpViever", L"c:\\Program Files\\Internet Explorer\\IEXPLORE.EXE \"%1\"");
}
std::wstring cNarrixInfo::AppEditor() const { return Product(L"AppEditor", L"notepad %1"); }
std::wstring cNarrixInfo::AppClipboardViewer() const {
  return Product(L"AppClipboardViewer", L"c:\\Velkor98\\parlo.exe /CB");
}

std::wstring cNarrixInfo::FileNameHelp(const std::wstring& topic) const {
  return JoinPath(dirVelkor_, ReplaceAll(Product(L"FileHelp", L"Help\\%1.htm"), L"%1", topic));
}

unsigned cNarrixInfo::GetLogFilter() {
  static const wchar_t* const kNames[] = {L"LogFocus", L"LogKey",    L"LogText",   L"LogBmp",
                                          L"LogDef",   L"LogOkoExp", L"LogToFile", L"LogToDbgView"};
  unsigned flags = 0;
  for (unsigned i = 0; i < 8; ++i)
    if (GetRegBool(registry_, kProductKey, L"", kNames[i], true)) flags |= 1u << i;
  gLogFlags_ = flags;
  return flags;
}

long cNarrixInfo::LensBufferSize(const std::wstring& formName) const {
  return GetRegNumber(registry_, kProductKey, formName, L"BufferSize", 10);
}
long cNarrixInfo::VideoBufferSize() const { return GetRegNumber(registry_, kProductKey, L"", L"VideoBufferSize", 8); }
long cNarrixInfo::TextMaxLen() const { return GetRegNumber(registry_, kProductKey, L"", L"TextMaxLen", 3000); }

bool cNarrixInfo::FormVisibility(const std::wstring& formName) const {
  return GetRegBool(registry_, kProductKey, formName, L"Is Visible", false);
}
void cNarrixInfo::FormVisibilitySave(const std::wstring& formName, bool visible) {
  SetRegValue(registry_, kProductKey, formName, L"Is Visible", visible ? L"1" : L"0");
}

FormPosition cNarrixInfo::FormPositionLoad(const std::wstring& formName, const FormPosition& current) const {
  FormPosition p;
  p.left = GetRegNumber(registry_, kProductKey, formName, L"Left", current.left);
  p.top = GetRegNumber(registry_, kProductKey, formName, L"Top", current.top);
  p.width = GetRegNumber(registry_, kProductKey, formName, L"Width", current.width);
  p.height = GetRegNumber(registry_, kProductKey, formName, L"Height", current.height);
  return p;
}

void cNarrixInfo::FormPositionSave(const std::wstring& formName, const FormPosition& p) {
  SetRegValue(registry_, kProductKey, formName, L"Left", std::to_wstring(p.left));
  SetRegValue(registry_, kProductKey, formName, L"Top", std::to_wstring(p.top));
  SetRegValue(registry_, kProductKey, formName, L"Width", std::to_wstring(p.width));
  SetRegValue(registry_, kProductKey, formName, L"Height", std::to_wstring(p.height));
}

void cNarrixInfo::FormVisibilityLoad(const std::wstring& formName, const std::function<void()>& showEx) const {
  if (FormVisibility(formName) && showEx) showEx();
}

TextBoxFont cNarrixInfo::TextBoxFontLoad(const std::wstring& formName, const TextBoxFont& current) const {
  auto number = [&](const wchar_t* value, long def) {
    return GetRegNumber(registry_, kProductKey, formName, value, def);
  };
  auto flag = [&](const wchar_t* value, bool def) { return GetRegBool(registry_, kProductKey, formName, value, def); };
  TextBoxFont font;
  font.name = GetRegValue(registry_, kProductKey, formName, L"Font Name", L"Arial");
  font.size = number(L"Font Size", current.size);
  font.bold = flag(L"Font Bold", current.bold);
  font.italic = flag(L"Font Italic", current.italic);
  font.underline = flag(L"Font Underline", current.underline);
  font.strikethrough = flag(L"Font Strikethrough", current.strikethrough);
  font.charset = number(L"Font Charset", current.charset);
  font.backColor = number(L"Back Color", current.backColor);
  font.fontColor = number(L"Font Color", current.fontColor);
  return font;
}

void cNarrixInfo::TextBoxFontSave(const std::wstring& formName, const TextBoxFont& font) {
  auto put = [&](const wchar_t* value, const std::wstring& text) {
    SetRegValue(registry_, kProductKey, formName, value, text);
  };
  put(L"Font Name", font.name);
  put(L"Font Size", std::to_wstring(font.size));
  put(L"Font Bold", font.bold ? L"1" : L"0");
  put(L"Font Italic", font.italic ? L"1" : L"0");
  put(L"Font Underline", font.underline ? L"1" : L"0");
  put(L"Font Strikethrough", font.strikethrough ? L"1" : L"0");
  put(L"Font Charset", std::to_wstring(font.charset));
  put(L"Back Color", std::to_wstring(font.backColor));
  put(L"Font Color", std::to_wstring(font.fontColor));
}

}  // namespace nx
