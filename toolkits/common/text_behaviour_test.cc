#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tarnsheets/failure.h"
#include "toolkits/common/toolkit_under_test.h"

namespace tarnsheets {
namespace {

class TextBoxTest : public ::testing::Test {
 protected:
  void SetUp() override {
    form_ = tk_.CreateForm("F");
    box_ = tk_.CreateTextBox(*form_, "Txt");
    multi_ = tk_.CreateTextBox(*form_, "Multi", -1, /*multi_line=*/true);
    box_->Events().Change = [this] { changes_.push_back(box_->Text()); };
    box_->SetFocus();
  }

  ToolkitUnderTest tk_;
  std::shared_ptr<Form> form_;
  std::shared_ptr<TextBox> box_, multi_;
  std::vector<std::string> changes_;
};

TEST_F(TextBoxTest, TypingRaisesKeyDownKeyPressChangeKeyUpPerKey) {
  std::vector<std::string> seen;
  box_->Events().KeyDown = [&](int16_t& k, int16_t&) {
    seen.push_back("down" + std::to_string(k));
  };
  box_->Events().KeyPress = [&](int16_t& k) { seen.push_back("press" + std::to_string(k)); };
  box_->Events().KeyUp = [&](int16_t& k, int16_t&) { seen.push_back("up" + std::to_string(k)); };
  box_->Events().Change = [&] { seen.push_back("change:" + box_->Text()); };
  tk_.TypeText("ab");
  EXPECT_EQ(seen, (std::vector<std::string>{"down65", "press97", "change:a", "up65", "down66",
                                            "press98", "change:ab", "up66"}));
  EXPECT_EQ(box_->SelStart(), 2);
}

TEST_F(TextBoxTest, KeyPressHandlerCanReplaceOrSwallowAKey) {
  box_->Events().KeyPress = [](int16_t& k) {
    if (k == 'x') k = 0;                // swallowed
    if (k >= 'a' && k <= 'z') k -= 32;  // upper-cased
  };
  tk_.TypeText("axb");
  EXPECT_EQ(box_->Text(), "AB");
  EXPECT_EQ(changes_, (std::vector<std::string>{"A", "AB"}));
}

TEST_F(TextBoxTest, EscapeAndEnterRaiseKeyPressButChangeNothingInASingleLineBox) {
  std::vector<int16_t> pressed;
  box_->Events().KeyPress = [&](int16_t& k) { pressed.push_back(k); };
  tk_.TypeText("hi");
  pressed.clear();
  changes_.clear();
  tk_.PressKey(kKeyEscape);
  tk_.PressKey(kKeyReturn);
  EXPECT_EQ(pressed, (std::vector<int16_t>{27, 13}));
  EXPECT_EQ(box_->Text(), "hi");
  EXPECT_TRUE(changes_.empty());
}

TEST_F(TextBoxTest, EnterBreaksTheLineOfAMultiLineBox) {
  multi_->SetFocus();
  tk_.TypeText("a");
  tk_.PressKey(kKeyReturn);
  tk_.TypeText("b");
  EXPECT_EQ(multi_->Text(), "a\r\nb");
}

TEST_F(TextBoxTest, BackspaceAndDeleteRemoveAroundTheCaret) {
  tk_.TypeText("abcd");
  tk_.PressKey(kKeyLeft);
  tk_.PressKey(kKeyLeft);
  tk_.PressKey(kKeyBack);  // removes b
  EXPECT_EQ(box_->Text(), "acd");
  tk_.PressKey(kKeyDelete);  // removes c
  EXPECT_EQ(box_->Text(), "ad");
  EXPECT_EQ(box_->SelStart(), 1);
}

TEST_F(TextBoxTest, SettingTheSameTextRaisesNoChangeAnotherTextRaisesOne) {
  box_->SetText("same");
  changes_.clear();
  box_->SetText("same");
  EXPECT_TRUE(changes_.empty());
  box_->SetText("other");
  EXPECT_EQ(changes_, std::vector<std::string>{"other"});
}

TEST_F(TextBoxTest, SelectionPropertiesCountCharactersAndClamp) {
  box_->SetText("日本語abc");
  box_->SetSelStart(1);
  box_->SetSelLength(3);
  EXPECT_EQ(box_->SelText(), "本語a");
  box_->SetSelLength(100);
  EXPECT_EQ(box_->SelLength(), 5);
  box_->SetSelStart(99);
  EXPECT_EQ(box_->SelStart(), 6);
  EXPECT_EQ(box_->SelLength(), 0);
  int number = 0;
  try {
    box_->SetSelStart(-1);
  } catch (const Failure& f) {
    number = f.Number();
  }
  EXPECT_EQ(number, kErrInvalidProcedureCall);
  box_->SetSelStart(0);
  box_->SetSelLength(TextLength(box_->Text()));
  box_->SetSelText("x");
  EXPECT_EQ(box_->Text(), "x");
}

TEST_F(TextBoxTest, TypingReplacesTheSelection) {
  box_->SetText("hello");
  box_->SetSelStart(1);
  box_->SetSelLength(3);
  tk_.TypeText("E");
  EXPECT_EQ(box_->Text(), "hEo");
}

TEST_F(TextBoxTest, ShiftArrowsExtendTheSelection) {
  box_->SetText("hello");
  tk_.PressKey(kKeyEnd);
  tk_.PressKey(kKeyLeft, kShiftMask);
  tk_.PressKey(kKeyLeft, kShiftMask);
  EXPECT_EQ(box_->SelStart(), 3);
  EXPECT_EQ(box_->SelText(), "lo");
}

TEST_F(TextBoxTest, CopyCutPasteAndClearUseTheClipboard) {
  box_->SetText("hello world");
  box_->SetSelStart(0);
  box_->SetSelLength(5);
  box_->Copy();
  EXPECT_EQ(tk_.ClipboardText(), "hello");
  EXPECT_EQ(box_->Text(), "hello world");
  box_->SetSelStart(5);
  box_->SetSelLength(6);
  box_->Cut();
  EXPECT_EQ(tk_.ClipboardText(), " world");
  EXPECT_EQ(box_->Text(), "hello");
  box_->SetSelStart(0);
  box_->Paste();
  EXPECT_EQ(box_->Text(), " worldhello");
  box_->SetSelStart(0);
  box_->SetSelLength(1);
  box_->Clear();
  EXPECT_EQ(box_->Text(), "worldhello");
  EXPECT_EQ(tk_.ClipboardText(), " world");  // Clear leaves the clipboard alone
}

TEST_F(TextBoxTest, CopyWithNoSelectionLeavesTheClipboard) {
  tk_.SetClipboardText("kept");
  box_->SetText("abc");
  box_->Copy();
  EXPECT_EQ(tk_.ClipboardText(), "kept");
}

TEST_F(TextBoxTest, PasteIntoASingleLineBoxStopsAtTheFirstLineBreak) {
  tk_.SetClipboardText("one\r\ntwo");
  box_->Paste();
  EXPECT_EQ(box_->Text(), "one");
  multi_->Paste();
  EXPECT_EQ(multi_->Text(), "one\r\ntwo");
}

TEST_F(TextBoxTest, SecondUndoUndoesTheFirst) {
  box_->SetText("base");
  EXPECT_FALSE(box_->CanUndo());  // setting the text empties the undo
  box_->SetSelStart(4);
  tk_.TypeText("123");
  EXPECT_TRUE(box_->CanUndo());
  changes_.clear();
  box_->Undo();  // a typed run undoes as one edit
  EXPECT_EQ(box_->Text(), "base");
  box_->Undo();
  EXPECT_EQ(box_->Text(), "base123");
  box_->Undo();
  EXPECT_EQ(box_->Text(), "base");
  EXPECT_EQ(changes_, (std::vector<std::string>{"base", "base123", "base"}));
}

TEST_F(TextBoxTest, UndoRevertsOnlyTheLastEdit) {
  box_->SetText("abc");
  box_->SetSelStart(3);
  tk_.TypeText("d");
  box_->SetSelStart(0);
  box_->SetSelLength(1);
  box_->Cut();
  EXPECT_EQ(box_->Text(), "bcd");
  box_->Undo();
  EXPECT_EQ(box_->Text(), "abcd");
  EXPECT_EQ(box_->SelText(), "a");
}

TEST_F(TextBoxTest, LockedBoxRefusesEditsButAllowsSelectionAndCopy) {
  box_->SetText("fixed");
  box_->SetLocked(true);
  std::vector<int16_t> pressed;
  box_->Events().KeyPress = [&](int16_t& k) { pressed.push_back(k); };
  changes_.clear();
  tk_.TypeText("x");
  tk_.PressKey(kKeyBack);
  tk_.PressKey(kKeyDelete);
  box_->SetSelStart(0);
  box_->SetSelLength(3);
  box_->Cut();
  tk_.SetClipboardText("zz");
  box_->Paste();
  box_->Clear();
  box_->Undo();
  EXPECT_EQ(box_->Text(), "fixed");
  EXPECT_TRUE(changes_.empty());
  EXPECT_EQ(pressed, (std::vector<int16_t>{'x', 8}));  // keys still reach KeyPress
  box_->Copy();
  EXPECT_EQ(tk_.ClipboardText(), "fix");
  box_->SetText("code may");  // setting from code still works
  EXPECT_EQ(box_->Text(), "code may");
}

TEST_F(TextBoxTest, ScrollBarShowsOnlyOnAMultiLineBox) {
  multi_->ShowScrollBar(true);
  EXPECT_TRUE(multi_->ScrollBarVisible());
  multi_->ShowScrollBar(false);
  EXPECT_FALSE(multi_->ScrollBarVisible());
  box_->ShowScrollBar(true);
  EXPECT_FALSE(box_->ScrollBarVisible());
}

TEST_F(TextBoxTest, PasswordCharIsOneCharacterAtMostAndBlocksCopy) {
  box_->SetPasswordChar("*");
  box_->SetText("secret");
  box_->SetSelLength(6);
  tk_.SetClipboardText("before");
  box_->Copy();
  EXPECT_EQ(tk_.ClipboardText(), "before");
  int number = 0;
  try {
    box_->SetPasswordChar("**");
  } catch (const Failure& f) {
    number = f.Number();
  }
  EXPECT_EQ(number, kErrInvalidProcedureCall);
  EXPECT_EQ(box_->PasswordChar(), "*");
}

TEST_F(TextBoxTest, ChineseTextIsTypedCharacterByCharacter) {
  std::vector<int16_t> pressed;
  box_->Events().KeyPress = [&](int16_t& k) { pressed.push_back(k); };
  tk_.TypeText("商机");
  EXPECT_EQ(box_->Text(), "商机");
  EXPECT_EQ(pressed.size(), 2u);
  EXPECT_EQ(static_cast<uint16_t>(pressed[0]), 0x5546);
  EXPECT_EQ(box_->SelStart(), 2);
}

// U+1F600 and U+20000 take four bytes in UTF-8 and two units in UTF-16: they are one
// character each, typed without KeyPress (which carries one UTF-16 unit).
TEST_F(TextBoxTest, FourByteCharactersTypedIntoABoxComeBackIntact) {
  std::vector<int16_t> pressed;
  box_->Events().KeyPress = [&](int16_t& k) { pressed.push_back(k); };
  tk_.TypeText("a\U0001F600\U00020000b");
  EXPECT_EQ(box_->Text(), "a\U0001F600\U00020000b");
  EXPECT_EQ(changes_.size(), 4u);
  EXPECT_EQ(pressed, (std::vector<int16_t>{'a', 'b'}));
  EXPECT_EQ(box_->SelStart(), 4);
  box_->SetSelStart(1);
  box_->SetSelLength(1);
  EXPECT_EQ(box_->SelText(), "\U0001F600");
}

TEST_F(TextBoxTest, FourByteCharactersSetIntoABoxSelectAndReplaceWhole) {
  box_->SetText("x\U0001F600y");
  box_->SetSelStart(1);
  box_->SetSelLength(1);
  EXPECT_EQ(box_->SelText(), "\U0001F600");
  box_->SetSelText("\U00020000\U0001F601");
  EXPECT_EQ(box_->Text(), "x\U00020000\U0001F601y");
  EXPECT_EQ(box_->SelStart(), 3);
  tk_.PressKey(kKeyBack);
  EXPECT_EQ(box_->Text(), "x\U00020000y");
  box_->Undo();
  EXPECT_EQ(box_->Text(), "x\U00020000\U0001F601y");
}

}  // namespace
}  // namespace tarnsheets
