#pragma once

#include <QObject>
#include <QWidget>
#include <functional>
#include <utility>

#include "backend/Windows.h"

namespace vistrel::windows {

/// Tells a window's client when the pointer comes into the content and when it leaves it, each once. From a
/// turn of its own of the main loop while a command is being obeyed, at once otherwise.
class ContentPointer {
 public:
  /// `obeys`: whether a command is being obeyed.
  ContentPointer(const QWidget& content, backend::WindowClient& client, std::function<bool()> obeys)
      : content_(content), client_(client), obeys_(std::move(obeys)) {}

  void didEnter() { tell(true); }
  void didLeave() { tell(false); }
  /// Looks where it is, after a time in which nothing was heard of it.
  void look() { tell(isOverContent()); }
  /// The same, and tells the client whatever it was told last.
  void lookAnew();
  /// A new content under a resting pointer has not been told of it.
  void contentDidChange();

 private:
  [[nodiscard]] bool isOverContent() const;
  void tell(bool isInside);

  const QWidget& content_;
  backend::WindowClient& client_;
  std::function<bool()> obeys_;
  bool isInside_ = false;
  // What waits for the main loop is dropped with the window.
  QObject context_;
};

}  // namespace vistrel::windows
