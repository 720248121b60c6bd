// Stand-ins for the menu editor's view, questions and native menus.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "menu/menu_editor.h"
#include "platform/prompts.h"
#include "platform/text.h"

namespace nx {

// A tree view in memory: nodes in insertion order with their parents.
class FakeEditorView : public IMenuEditorView {
 public:
  struct Node {
    std::wstring key, parent, text;
    bool expanded = false;
  };
  std::vector<Node> nodes;
  std::optional<std::wstring> selected;
  std::wstring title, fields[3];
  std::map<EditorCommand, bool> enabled;
  std::map<EditorCommand, std::wstring> commandTexts;
  bool applyEnabled = false, closed = false, nameFocused = false;
  int menusOpened = 0, updates = 0;
  int previewAnswer = 0;

  void SetTitle(const std::wstring& text) override { title = text; }
  void SetText(EditorText, const std::wstring&) override {}
  void SetCommandText(EditorCommand c, const std::wstring& text) override { commandTexts[c] = text; }
  void EnableCommand(EditorCommand c, bool on) override { enabled[c] = on; }
  void EnableApply(bool on) override { applyEnabled = on; }
  void BeginTreeUpdate() override { ++updates; }
  void EndTreeUpdate() override {}
  void ClearTree() override {
    nodes.clear();
    selected.reset();
  }
  void AddNode(const std::wstring& key, const std::wstring& parent, const std::wstring& text, bool expanded) override {
    nodes.push_back({key, parent, text, expanded});
  }
  int NodeCount() const override { return static_cast<int>(nodes.size()); }
  std::optional<std::wstring> SelectedNode() const override { return selected; }
  void SelectNode(const std::wstring& key) override { selected = key; }
  std::wstring NodeText(const std::wstring& key) const override {
    for (const auto& n : nodes)
      if (n.key == key) return n.text;
    return {};
  }
  void SetFields(const std::wstring& a, const std::wstring& b, const std::wstring& c) override {
    fields[0] = a;
    fields[1] = b;
    fields[2] = c;
  }
  void FocusNameField() override { nameFocused = true; }
  void OpenItemMenu() override { ++menusOpened; }
  int TrackPreview(NativeMenu) override { return previewAnswer; }
  void Close() override { closed = true; }

  Node* Find(const std::wstring& key) {
    for (auto& n : nodes)
      if (n.key == key) return &n;
    return nullptr;
  }
  // "text(children)" of the tree as shown.
  std::wstring Shape(const std::wstring& parent = L"") const {
    std::wstring out;
    for (const auto& n : nodes) {
      if (n.parent != parent) continue;
      const std::wstring inner = Shape(n.key);
      out += (out.empty() ? L"" : L" ") + n.text + (inner.empty() ? L"" : L"(" + inner + L")");
    }
    return out;
  }
  void SelectText(const std::wstring& text) {
    for (const auto& n : nodes)
      if (n.text == text) selected = n.key;
  }
};

class ScriptedPrompts : public IPrompts {
 public:
  struct Asked {
    std::wstring text;
    unsigned style;
  };
  std::deque<int> answers;
  std::vector<Asked> asked;
  int Message(const std::wstring& text, unsigned style, const std::wstring&) override {
    asked.push_back({text, style});
    if (answers.empty()) {
      ADD_FAILURE() << "unexpected question: " << WideToUtf8(text);
      return mb::kIdCancel;
    }
    const int answer = answers.front();
    answers.pop_front();
    return answer;
  }
};

class NullMenus : public INativeMenus {
 public:
  NativeMenu CreatePopup() override { return 1; }
  void AppendPopup(NativeMenu, NativeMenu, const std::wstring&) override {}
  void AppendCommand(NativeMenu, int, const std::wstring&) override {}
  void Destroy(NativeMenu) override {}
};

}  // namespace nx
