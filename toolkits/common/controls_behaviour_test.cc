#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/control_array.h"
#include "tarnsheets/failure.h"
#include "toolkits/common/toolkit_under_test.h"

namespace tarnsheets {
namespace {

TEST(ControlArrayTest, LoadCopiesElementZeroAsAnInvisibleNewElement) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  ControlArray<CommandButton> buttons;
  auto b0 = tk.CreateCommandButton(*form, "UserCommand", 0);
  b0->Move(100, 200, 900, 330);
  b0->SetCaption("Pattern");
  b0->SetTag("t");
  b0->SetVisible(false);
  Font font;
  font.name = "Tahoma";
  font.size = 9;
  b0->SetFont(font);
  buttons.Add(0, b0);
  b0->SetVisible(true);
  CommandButton& b3 = buttons.Load(3, [&](const CommandButton& element0, int32_t index) {
    return LoadControlAs(tk, element0, index);
  });
  EXPECT_EQ(b3.Name(), "UserCommand");
  EXPECT_EQ(b3.Index(), 3);
  EXPECT_EQ(b3.TypeName(), "CommandButton");
  EXPECT_FALSE(b3.Visible());
  EXPECT_EQ(b3.Left(), 100);
  EXPECT_EQ(b3.Top(), 200);
  EXPECT_EQ(b3.Width(), 900);
  EXPECT_EQ(b3.Height(), 330);
  EXPECT_EQ(b3.Caption(), "Pattern");
  EXPECT_EQ(b3.Tag(), "t");
  EXPECT_EQ(b3.GetFont(), font);
  EXPECT_EQ(b3.Parent(), form.get());
  EXPECT_EQ(form->FindControl("UserCommand", 3).get(), &b3);
  EXPECT_EQ(buttons.Indices(), (std::vector<int32_t>{0, 3}));
  EXPECT_EQ(buttons.Count(), 2);
}

TEST(ControlArrayTest, MissingElementFailsWith340NamingTheIndex) {
  ControlArray<Label> labels;
  try {
    labels(7);
    FAIL() << "no failure";
  } catch (const Failure& f) {
    EXPECT_EQ(f.Number(), kErrControlArrayElementMissing);
    EXPECT_EQ(f.Description(), "Control array element '7' doesn't exist");
  }
  EXPECT_EQ(FailureNumber([&] { labels.Unload(2); }), kErrControlArrayElementMissing);
  // Loading with no element 0 fails on the template.
  EXPECT_EQ(FailureNumber([&] {
              labels.Load(1, [](const Label&, int32_t) { return std::shared_ptr<Label>(); });
            }),
            kErrControlArrayElementMissing);
}

TEST(ControlArrayTest, LoadingALoadedIndexFailsWith360AndChangesNothing) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  ControlArray<Label> labels;
  labels.Add(0, tk.CreateLabel(*form, "Lbl_Title", 0));
  auto make = [&](const Label& e0, int32_t i) { return LoadControlAs(tk, e0, i); };
  labels.Load(1, make);
  EXPECT_EQ(FailureNumber([&] { labels.Load(1, make); }), kErrObjectAlreadyLoaded);
  EXPECT_EQ(FailureNumber([&] { tk.LoadControl(labels(0), 1); }), kErrObjectAlreadyLoaded);
  EXPECT_EQ(labels.Count(), 2);
  EXPECT_EQ(form->AllControls().size(), 2u);
}

TEST(ControlArrayTest, UnloadRemovesTheElementFromArrayAndForm) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  ControlArray<TextBox> rows;
  rows.Add(0, tk.CreateTextBox(*form, "Row", 0));
  auto make = [&](const TextBox& e0, int32_t i) { return LoadControlAs(tk, e0, i); };
  rows.Load(1, make);
  rows.Load(2, make);
  std::shared_ptr<TextBox> gone = rows.Unload(1);
  tk.Unload(*gone);
  EXPECT_EQ(rows.Indices(), (std::vector<int32_t>{0, 2}));
  EXPECT_EQ(form->FindControl("Row", 1), nullptr);
  EXPECT_EQ(gone->Parent(), nullptr);
  rows.Load(1, make);  // the index can be loaded again
  EXPECT_EQ(rows.Count(), 3);
}

TEST(ControlArrayTest, LoadedTextBoxKeepsItsFormAndText) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto t0 = tk.CreateTextBox(*form, "Txt_Text", 0, true);
  t0->SetText("OrrinText");
  t0->SetLocked(true);
  auto t1 = LoadControlAs(tk, *t0, 1);
  ASSERT_NE(t1, nullptr);
  EXPECT_TRUE(t1->MultiLine());
  EXPECT_EQ(t1->Text(), "OrrinText");
  EXPECT_TRUE(t1->Locked());
}

TEST(ControlWalkTest, AllControlsListsNameAndTypeNameAndStopsAtNestedUserControls) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto sheet = tk.CreateUserControl(*form, "UserInfo", "Sheet");
  tk.CreateLabel(*sheet, "Lbl_Caption");
  auto shape = tk.CreateShape(*sheet, "Shp_Caption");
  auto pic = tk.CreatePictureBox(*sheet, "Pic_TableStart");
  tk.CreateTextBox(*pic, "Inside");
  auto field = tk.CreateUserControl(*sheet, "SFText", "Txt_Value", 0);
  tk.CreateTextBox(*field, "Txt_Text", 0);
  auto menu = tk.CreateMenu(*sheet, nullptr, "mnu_Menu");
  tk.CreateMenu(*sheet, menu.get(), "mnu_Undo");
  std::vector<std::string> seen;
  for (const auto& c : sheet->AllControls()) seen.push_back(c->Name() + ":" + c->TypeName());
  EXPECT_EQ(seen, (std::vector<std::string>{"Lbl_Caption:Label", "Shp_Caption:Shape",
                                            "Pic_TableStart:PictureBox", "Inside:TextBox",
                                            "Txt_Value:SFText", "mnu_Menu:Menu", "mnu_Undo:Menu"}));
  EXPECT_EQ(sheet->TypeName(), "UserInfo");
  EXPECT_EQ(field->Owner(), sheet.get());
}

TEST(ControlWalkTest, SettingAFontOnEveryControlFailsWith438OnlyWhereThereIsNone) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  tk.CreateLabel(*form, "L");
  tk.CreateShape(*form, "S");
  tk.CreateImage(*form, "I");
  tk.CreateMenu(*form, nullptr, "M");
  tk.CreateTextBox(*form, "T");
  std::vector<std::string> refused;
  for (const auto& c : form->AllControls()) {
    try {
      Font f = c->GetFont();
      f.name = "SimSun";
      c->SetFont(f);
    } catch (const Failure& f) {
      EXPECT_EQ(f.Number(), kErrNotSupported);
      EXPECT_EQ(f.Description(), "Object doesn't support this property or method");
      refused.push_back(c->Name());
    }
  }
  EXPECT_EQ(refused, (std::vector<std::string>{"S", "I", "M"}));
  EXPECT_EQ(form->FindControl("L")->GetFont().name, "SimSun");
}

TEST(ControlWalkTest, UnsupportedPropertiesFailWith438) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto box = tk.CreateTextBox(*form, "T");
  auto label = tk.CreateLabel(*form, "L");
  auto menu = tk.CreateMenu(*form, nullptr, "M");
  EXPECT_EQ(FailureNumber([&] { box->SetCaption("x"); }), kErrNotSupported);
  EXPECT_EQ(FailureNumber([&] { label->SetTabStop(true); }), kErrNotSupported);
  EXPECT_EQ(FailureNumber([&] { menu->Move(0); }), kErrNotSupported);
  EXPECT_EQ(FailureNumber([&] { (void)menu->Width(); }), kErrNotSupported);
}

TEST(ControlGeometryTest, MoveKeepsOmittedArgumentsAndResizeFollowsASizeChange) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "SFText", "Txt");
  int resizes = 0;
  uc->Events().Resize = [&] { ++resizes; };
  uc->Move(10, 20, 3375, 825);
  EXPECT_EQ(resizes, 1);
  uc->Move(30);
  EXPECT_EQ(uc->Left(), 30);
  EXPECT_EQ(uc->Top(), 20);
  EXPECT_EQ(uc->Width(), 3375);
  EXPECT_EQ(resizes, 1);  // a move without a new size is no resize
  uc->SetWidth(1);
  EXPECT_EQ(resizes, 2);
  EXPECT_EQ(uc->Drawing().ScaleWidth(), 1);
}

TEST(ControlGeometryTest, WindowRectIsTheOuterRectangleInScreenPixels) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  form->Move(1500, 750);
  auto uc = tk.CreateUserControl(*form, "UserInfo", "Sheet");
  uc->Move(150, 300, 3000, 1500);
  auto field = tk.CreateUserControl(*uc, "SFText", "Txt_Value", 0);
  field->Move(300, 150, 1500, 300);
  EXPECT_EQ(tk.WindowRect(*field), (SheetRect{130, 80, 230, 100}));
  tk.SetTwipsPerPixel(12, 12);
  EXPECT_EQ(tk.TwipsPerPixelX(), 12);
  EXPECT_EQ(tk.WindowRect(*field).Right - tk.WindowRect(*field).Left, 125);
}

TEST(DrawingTest, SurfaceRecordsOperationsSinceTheLastCls) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "SFCheck", "Chk");
  uc->Move(0, 0, 195, 195);
  Surface& s = uc->Drawing();
  s.Line(0, 0, 180, 0, 0xBB5522);
  s.Box(15, 15, 180, 180, kSysWindowBackground);
  Picture p{"PictureClip1", 2, 1, {Rgb(0, 0, 0), Rgb(0xFD, 0xFD, 0xFD)}};
  s.PaintPicture(p, 45, 60);
  const auto& ops = tk.DrawOps(*uc);
  ASSERT_EQ(ops.size(), 3u);
  EXPECT_EQ(ops[0].kind, DrawOp::Kind::kLine);
  EXPECT_EQ(ops[0].ToString(), "line 0,0-180,0 #BB5522");
  EXPECT_EQ(ops[1].ToString(), "box 15,15-180,180 #80000005");
  EXPECT_EQ(ops[2].ToString(), "picture PictureClip1 2x1 at 45,60");
  EXPECT_EQ(ops[2].picture, p);
  s.Cls();
  EXPECT_TRUE(tk.DrawOps(*uc).empty());
  EXPECT_EQ(tk.ClsCount(*uc), 1);
}

TEST(DrawingTest, SettingBackColorClearsTheDrawing) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "SFCheck", "Chk");
  uc->Drawing().Line(0, 0, 15, 15, 0);
  uc->SetBackColor(kSysButtonFace);
  EXPECT_TRUE(tk.DrawOps(*uc).empty());
  EXPECT_EQ(FailureNumber([&] { tk.DrawOps(*tk.CreateLabel(*form, "L")); }), kErrNotSupported);
}

TEST(DrawingTest, RenderedPixelsShowLinesWithoutTheirEndPointBoxesAndPictures) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "SFCheck", "Chk");
  uc->Move(0, 0, 75, 60);  // 5 x 4 pixels
  uc->SetBackColor(kSysWindowBackground);
  uc->Drawing().Line(0, 0, 60, 0, 0x0000FF);  // pixels 0..3 of row 0
  uc->Drawing().Box(15, 30, 30, 45, 0x00FF00);
  uc->Drawing().PaintPicture(Picture{"P", 1, 1, {0x123456}}, 60, 45);
  int32_t w = 0, h = 0;
  const std::vector<Color> px = tk.RenderPixels(*uc, &w, &h);
  ASSERT_EQ(w, 5);
  ASSERT_EQ(h, 4);
  auto at = [&](int x, int y) { return px[static_cast<size_t>(y * w + x)]; };
  EXPECT_EQ(at(0, 0), 0x0000FFu);
  EXPECT_EQ(at(3, 0), 0x0000FFu);
  EXPECT_EQ(at(4, 0), 0xFFFFFFu);
  EXPECT_EQ(at(1, 2), 0x00FF00u);
  EXPECT_EQ(at(2, 3), 0x00FF00u);
  EXPECT_EQ(at(0, 2), 0xFFFFFFu);
  EXPECT_EQ(at(4, 3), 0x123456u);
}

TEST(DrawingTest, PictureWithTooFewPixelsIsRefusedAndNothingIsRecorded) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "SFCheck", "Chk");
  EXPECT_EQ(FailureNumber([&] {
              uc->Drawing().PaintPicture(Picture{"Bad", 7, 7, {0}}, 0, 0);
            }),
            kErrInvalidProcedureCall);
  EXPECT_TRUE(tk.DrawOps(*uc).empty());
}

TEST(UserControlTest, NotifyPropertyChangedIsRecordedAndAmbientFontIsTheContainers) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  Font f;
  f.name = "SimSun";
  form->SetFont(f);
  auto uc = tk.CreateUserControl(*form, "SFText", "Txt");
  uc->NotifyPropertyChanged("Style");
  uc->NotifyPropertyChanged("Text");
  EXPECT_EQ(tk.NotifiedProperties(*uc), (std::vector<std::string>{"Style", "Text"}));
  EXPECT_EQ(uc->AmbientFont().name, "SimSun");
  tk.ClearNotifiedProperties(*uc);
  EXPECT_TRUE(tk.NotifiedProperties(*uc).empty());
}

// An editor tells its container of Text and Locked on every record a sheet shows; a long session
// must not pile those up.
TEST(UserControlTest, NotifiedPropertiesKeepTheLatestKeysOnly) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "SFText", "Txt");
  for (int i = 0; i < 10000; ++i) uc->NotifyPropertyChanged("Key" + std::to_string(i));
  const std::vector<std::string>& log = tk.NotifiedProperties(*uc);
  ASSERT_FALSE(log.empty());
  EXPECT_LE(log.size(), 256u);
  EXPECT_EQ(log.back(), "Key9999");
  EXPECT_EQ(log[log.size() - 2], "Key9998");
}

TEST(UserControlTest, RefreshAndRepaintRaisePaint) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "SFCheck", "Chk");
  int paints = 0;
  uc->Events().Paint = [&] { ++paints; };
  uc->Refresh();
  tk.Repaint(*uc);
  EXPECT_EQ(paints, 2);
}

TEST(DialogTest, MessageBoxesAreRecordedInOrderAndObservedAsTheyHappen) {
  ToolkitUnderTest tk;
  std::vector<std::string> observed;
  tk.SetDialogObserver([&](const DialogRecord& r) { observed.push_back(r.title + "|" + r.text); });
  tk.MessageBox("Add", "Error 5\r\nInvalid", MessageBoxStyle::kCritical);
  tk.MessageBox("Sheet", "Unknown command", MessageBoxStyle::kPlain);
  ASSERT_EQ(tk.DialogLog().size(), 2u);
  EXPECT_EQ(tk.DialogLog()[0].kind, DialogRecord::Kind::kMessageBox);
  EXPECT_EQ(tk.DialogLog()[0].style, MessageBoxStyle::kCritical);
  EXPECT_EQ(tk.DialogLog()[1].style, MessageBoxStyle::kPlain);
  EXPECT_EQ(observed,
            (std::vector<std::string>{"Add|Error 5\r\nInvalid", "Sheet|Unknown command"}));
}

TEST(DialogTest, ModalFormRunsLoadIsRecordedThenAnsweredWithItsDefaultButton) {
  ToolkitUnderTest tk;
  auto main = tk.CreateForm("Main");
  auto field = tk.CreateTextBox(*main, "Field");
  field->SetFocus();
  auto err = tk.CreateForm("FrmShowErr");
  std::vector<std::string> events;
  std::shared_ptr<TextBox> title, text;
  err->Events().Load = [&] {
    events.push_back("load");
    err->SetCaption("Error");
    title = tk.CreateTextBox(*err, "Txt_Title");
    text = tk.CreateTextBox(*err, "Txt_ErrDescription", -1, true);
    title->SetText("Save_FieldValue");
    text->SetText("Overflow");
    auto ok = tk.CreateCommandButton(*err, "CmdOk");
    ok->SetDefault(true);
    ok->Events().Click = [&] {
      events.push_back("ok");
      tk.Unload(*err);
    };
  };
  err->Events().Unload = [&] { events.push_back("unload"); };
  tk.SetDialogObserver([&](const DialogRecord& r) { events.push_back("record " + r.title); });
  tk.ShowModal(*err);
  EXPECT_EQ(events, (std::vector<std::string>{"load", "record Error", "ok", "unload"}));
  ASSERT_EQ(tk.DialogLog().size(), 1u);
  EXPECT_EQ(tk.DialogLog()[0].kind, DialogRecord::Kind::kModalForm);
  EXPECT_EQ(tk.DialogLog()[0].name, "FrmShowErr");
  EXPECT_EQ(tk.DialogLog()[0].text, "Save_FieldValue\nOverflow");
  EXPECT_FALSE(err->IsShown());
  // The window that was active before has its focus back.
  EXPECT_EQ(tk.GetFocus(), field.get());
}

TEST(DialogTest, PopupMenuIsRecordedAndAnAnsweredItemIsClicked) {
  ToolkitUnderTest tk;
  auto form = tk.CreateForm("F");
  auto uc = tk.CreateUserControl(*form, "UserInfo", "Sheet");
  auto menu = tk.CreateMenu(*uc, nullptr, "mnu_Menu");
  auto add = tk.CreateMenu(*uc, menu.get(), "mnu_NewRecord");
  add->SetCaption("New");
  auto undo = tk.CreateMenu(*uc, menu.get(), "mnu_Undo");
  undo->SetCaption("Undo");
  undo->SetEnabled(false);
  int clicks = 0;
  undo->Events().Click = [&] { ++clicks; };
  tk.SetPopupMenuAnswer([](const Menu&) { return std::string("mnu_Undo"); });
  uc->PopupMenu(*menu);
  EXPECT_EQ(clicks, 0);  // a disabled item cannot be chosen
  undo->SetEnabled(true);
  uc->PopupMenu(*menu);
  EXPECT_EQ(clicks, 1);
  ASSERT_EQ(tk.DialogLog().size(), 2u);
  EXPECT_EQ(tk.DialogLog()[0].kind, DialogRecord::Kind::kPopupMenu);
  EXPECT_EQ(tk.DialogLog()[0].text, "New|Undo");
}

}  // namespace
}  // namespace tarnsheets
