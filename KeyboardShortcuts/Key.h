#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "base/KeyCodes.h"

namespace vistrel::KeyboardShortcuts {

/// A key: a virtual key code, that is a position on the keyboard.
struct Key {
  std::int64_t rawValue = 0;
  bool operator==(const Key&) const = default;

  static const Key a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y, z;
  static const Key zero, one, two, three, four, five, six, seven, eight, nine;
  static const Key capsLock, shift, function, control, option, command;
  static const Key rightCommand, rightOption, rightControl, rightShift;
  static const Key return_;  ///< "return": the word is the language's own
  static const Key backslash, backtick, comma, equal, minus, period, quote, semicolon, slash, space, tab;
  static const Key leftBracket, rightBracket;
  static const Key pageUp, pageDown, home, end, upArrow, rightArrow, downArrow, leftArrow;
  static const Key escape;
  static const Key delete_;  ///< "delete", the backspace key: the word is the language's own
  static const Key deleteForward, help;
  static const Key mute, volumeUp, volumeDown;
  static const Key f1, f2, f3, f4, f5, f6, f7, f8, f9, f10, f11, f12, f13, f14, f15, f16, f17, f18, f19, f20;
  static const Key keypad0, keypad1, keypad2, keypad3, keypad4, keypad5, keypad6, keypad7, keypad8, keypad9;
  static const Key keypadClear, keypadDecimal, keypadDivide, keypadEnter, keypadEquals, keypadMinus;
  static const Key keypadMultiply, keypadPlus;
};

inline constexpr Key Key::a{kVK_ANSI_A};
inline constexpr Key Key::b{kVK_ANSI_B};
inline constexpr Key Key::c{kVK_ANSI_C};
inline constexpr Key Key::d{kVK_ANSI_D};
inline constexpr Key Key::e{kVK_ANSI_E};
inline constexpr Key Key::f{kVK_ANSI_F};
inline constexpr Key Key::g{kVK_ANSI_G};
inline constexpr Key Key::h{kVK_ANSI_H};
inline constexpr Key Key::i{kVK_ANSI_I};
inline constexpr Key Key::j{kVK_ANSI_J};
inline constexpr Key Key::k{kVK_ANSI_K};
inline constexpr Key Key::l{kVK_ANSI_L};
inline constexpr Key Key::m{kVK_ANSI_M};
inline constexpr Key Key::n{kVK_ANSI_N};
inline constexpr Key Key::o{kVK_ANSI_O};
inline constexpr Key Key::p{kVK_ANSI_P};
inline constexpr Key Key::q{kVK_ANSI_Q};
inline constexpr Key Key::r{kVK_ANSI_R};
inline constexpr Key Key::s{kVK_ANSI_S};
inline constexpr Key Key::t{kVK_ANSI_T};
inline constexpr Key Key::u{kVK_ANSI_U};
inline constexpr Key Key::v{kVK_ANSI_V};
inline constexpr Key Key::w{kVK_ANSI_W};
inline constexpr Key Key::x{kVK_ANSI_X};
inline constexpr Key Key::y{kVK_ANSI_Y};
inline constexpr Key Key::z{kVK_ANSI_Z};
inline constexpr Key Key::zero{kVK_ANSI_0};
inline constexpr Key Key::one{kVK_ANSI_1};
inline constexpr Key Key::two{kVK_ANSI_2};
inline constexpr Key Key::three{kVK_ANSI_3};
inline constexpr Key Key::four{kVK_ANSI_4};
inline constexpr Key Key::five{kVK_ANSI_5};
inline constexpr Key Key::six{kVK_ANSI_6};
inline constexpr Key Key::seven{kVK_ANSI_7};
inline constexpr Key Key::eight{kVK_ANSI_8};
inline constexpr Key Key::nine{kVK_ANSI_9};
inline constexpr Key Key::capsLock{kVK_CapsLock};
inline constexpr Key Key::shift{kVK_Shift};
inline constexpr Key Key::function{kVK_Function};
inline constexpr Key Key::control{kVK_Control};
inline constexpr Key Key::option{kVK_Option};
inline constexpr Key Key::command{kVK_Command};
inline constexpr Key Key::rightCommand{kVK_RightCommand};
inline constexpr Key Key::rightOption{kVK_RightOption};
inline constexpr Key Key::rightControl{kVK_RightControl};
inline constexpr Key Key::rightShift{kVK_RightShift};
inline constexpr Key Key::return_{kVK_Return};
inline constexpr Key Key::backslash{kVK_ANSI_Backslash};
inline constexpr Key Key::backtick{kVK_ANSI_Grave};
inline constexpr Key Key::comma{kVK_ANSI_Comma};
inline constexpr Key Key::equal{kVK_ANSI_Equal};
inline constexpr Key Key::minus{kVK_ANSI_Minus};
inline constexpr Key Key::period{kVK_ANSI_Period};
inline constexpr Key Key::quote{kVK_ANSI_Quote};
inline constexpr Key Key::semicolon{kVK_ANSI_Semicolon};
inline constexpr Key Key::slash{kVK_ANSI_Slash};
inline constexpr Key Key::space{kVK_Space};
inline constexpr Key Key::tab{kVK_Tab};
inline constexpr Key Key::leftBracket{kVK_ANSI_LeftBracket};
inline constexpr Key Key::rightBracket{kVK_ANSI_RightBracket};
inline constexpr Key Key::pageUp{kVK_PageUp};
inline constexpr Key Key::pageDown{kVK_PageDown};
inline constexpr Key Key::home{kVK_Home};
inline constexpr Key Key::end{kVK_End};
inline constexpr Key Key::upArrow{kVK_UpArrow};
inline constexpr Key Key::rightArrow{kVK_RightArrow};
inline constexpr Key Key::downArrow{kVK_DownArrow};
inline constexpr Key Key::leftArrow{kVK_LeftArrow};
inline constexpr Key Key::escape{kVK_Escape};
inline constexpr Key Key::delete_{kVK_Delete};
inline constexpr Key Key::deleteForward{kVK_ForwardDelete};
inline constexpr Key Key::help{kVK_Help};
inline constexpr Key Key::mute{kVK_Mute};
inline constexpr Key Key::volumeUp{kVK_VolumeUp};
inline constexpr Key Key::volumeDown{kVK_VolumeDown};
inline constexpr Key Key::f1{kVK_F1};
inline constexpr Key Key::f2{kVK_F2};
inline constexpr Key Key::f3{kVK_F3};
inline constexpr Key Key::f4{kVK_F4};
inline constexpr Key Key::f5{kVK_F5};
inline constexpr Key Key::f6{kVK_F6};
inline constexpr Key Key::f7{kVK_F7};
inline constexpr Key Key::f8{kVK_F8};
inline constexpr Key Key::f9{kVK_F9};
inline constexpr Key Key::f10{kVK_F10};
inline constexpr Key Key::f11{kVK_F11};
inline constexpr Key Key::f12{kVK_F12};
inline constexpr Key Key::f13{kVK_F13};
inline constexpr Key Key::f14{kVK_F14};
inline constexpr Key Key::f15{kVK_F15};
inline constexpr Key Key::f16{kVK_F16};
inline constexpr Key Key::f17{kVK_F17};
inline constexpr Key Key::f18{kVK_F18};
inline constexpr Key Key::f19{kVK_F19};
inline constexpr Key Key::f20{kVK_F20};
inline constexpr Key Key::keypad0{kVK_ANSI_Keypad0};
inline constexpr Key Key::keypad1{kVK_ANSI_Keypad1};
inline constexpr Key Key::keypad2{kVK_ANSI_Keypad2};
inline constexpr Key Key::keypad3{kVK_ANSI_Keypad3};
inline constexpr Key Key::keypad4{kVK_ANSI_Keypad4};
inline constexpr Key Key::keypad5{kVK_ANSI_Keypad5};
inline constexpr Key Key::keypad6{kVK_ANSI_Keypad6};
inline constexpr Key Key::keypad7{kVK_ANSI_Keypad7};
inline constexpr Key Key::keypad8{kVK_ANSI_Keypad8};
inline constexpr Key Key::keypad9{kVK_ANSI_Keypad9};
inline constexpr Key Key::keypadClear{kVK_ANSI_KeypadClear};
inline constexpr Key Key::keypadDecimal{kVK_ANSI_KeypadDecimal};
inline constexpr Key Key::keypadDivide{kVK_ANSI_KeypadDivide};
inline constexpr Key Key::keypadEnter{kVK_ANSI_KeypadEnter};
inline constexpr Key Key::keypadEquals{kVK_ANSI_KeypadEquals};
inline constexpr Key Key::keypadMinus{kVK_ANSI_KeypadMinus};
inline constexpr Key Key::keypadMultiply{kVK_ANSI_KeypadMultiply};
inline constexpr Key Key::keypadPlus{kVK_ANSI_KeypadPlus};

}  // namespace vistrel::KeyboardShortcuts

template <>
struct std::hash<vistrel::KeyboardShortcuts::Key> {
  std::size_t operator()(const vistrel::KeyboardShortcuts::Key& key) const noexcept {
    return std::hash<std::int64_t>{}(key.rawValue);
  }
};
