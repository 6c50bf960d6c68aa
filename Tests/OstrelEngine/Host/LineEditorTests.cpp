#include "OstrelEngine/Host/LineEditor.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Ostrel {
namespace {

using Move = LineEditor::Move;
using Selection = LineEditor::Selection;

/// The text with "|" at the cursor and "^" at the other end of a selection.
std::string shown(const LineEditor& editor) {
    QString text = editor.text();
    text.insert(std::max(editor.cursor(), editor.anchor()), editor.cursor() >= editor.anchor() ? '|' : '^');
    if (editor.hasSelection())
        text.insert(editor.selectionStart(), editor.cursor() < editor.anchor() ? '|' : '^');
    return text.toStdString();
}

TEST(LineEditor, typesInPlaceOfTheSelection) {
    LineEditor editor("old");
    EXPECT_EQ(shown(editor), "^old|");
    editor.insert("a b\nc\t");
    EXPECT_EQ(shown(editor), "a bc|") << "line ends and tabs are no text of one line";
    editor.insert(QString(100000, 'x'));
    EXPECT_LT(editor.text().size(), 50000);
}

TEST(LineEditor, stepsOverWholeCharactersAndWords) {
    LineEditor editor(QString::fromUtf8("one  a\u0308\U0001F600 two"));
    editor.move(Move::start, Selection::drop);
    editor.move(Move::nextWord, Selection::drop);
    EXPECT_EQ(shown(editor), "one  |a\u0308\U0001F600 two");
    editor.move(Move::nextCharacter, Selection::drop);
    editor.move(Move::nextCharacter, Selection::extend);
    EXPECT_EQ(shown(editor), "one  a\u0308^\U0001F600| two");
    editor.move(Move::previousCharacter, Selection::drop);
    EXPECT_EQ(shown(editor), "one  a\u0308|\U0001F600 two") << "a step out of a selection goes to its end";
    editor.erase(Move::previousCharacter);
    EXPECT_EQ(shown(editor), "one  |\U0001F600 two");
    editor.erase(Move::nextCharacter);
    editor.erase(Move::previousWord);
    EXPECT_EQ(shown(editor), "| two");
    editor.erase(Move::previousCharacter);
    editor.move(Move::end, Selection::extend);
    EXPECT_EQ(shown(editor), "^ two|");
    editor.setCursor(-5, Selection::extend);
    EXPECT_EQ(shown(editor), "| two");
}

TEST(LineEditor, selectsAWord) {
    LineEditor editor("ab cde f");
    editor.selectWordAt(4);
    EXPECT_EQ(editor.selectedText(), "cde");
    editor.selectWordAt(99);
    EXPECT_LE(editor.selectionEnd(), 8);
}

TEST(LineEditor, replacesWhatAnInputMethodAsksFor) {
    LineEditor editor("nihon");
    editor.move(Move::end, Selection::drop);
    editor.replace(-5, 5, QString::fromUtf8("\u65E5\u672C"));
    EXPECT_EQ(shown(editor), "\u65E5\u672C|");
    editor.replace(-99, 1000, "x");
    EXPECT_EQ(shown(editor), "x|");
}

} // namespace
} // namespace Ostrel
