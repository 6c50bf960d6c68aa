#include "OstrelGUI/Window/RowList.h"

#include <QApplication>
#include <QElapsedTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Ostrel {

namespace {

std::string wrapped(QStringView text, double width) {
    const CharacterWidths widths{QFont()};
    QStringList lines;
    for (const QStringView line : wrappedLines(text, width, widths)) {
        lines += line.toString();
        EXPECT_TRUE(line.size() <= 1 || widths.width(line) <= width) << lines.back().toStdString();
    }
    return lines.join("|").toStdString();
}

double widthOf(const char* text) {
    return CharacterWidths{QFont()}.width(QString::fromUtf8(text)) + 0.5;
}

} // namespace

TEST(WrappedText, breaksAtBlanksAndWhereItMust) {
    EXPECT_EQ(wrapped(u"", 100), "");
    EXPECT_EQ(wrapped(u"one two three", widthOf("one two")), "one two|three");
    EXPECT_EQ(wrapped(u"one two three", widthOf("one two three")), "one two three");
    EXPECT_EQ(wrapped(u"first\nsecond line", 1000), "first|second line");
    EXPECT_EQ(wrapped(u"at /aaaaaa", widthOf("/aaa")), "at|/aaa|aaa");
    EXPECT_EQ(wrapped(u"abc", 0), "a|b|c") << "a column of no width ends";
    EXPECT_EQ(wrapped(u"日本語 テキスト", widthOf("日本語")), "日本語|テキス|ト");
    for (const char16_t c : {u'\n', u' ', u'w', u'\xd800'}) {
        const QString hostile(1 << 22, c);
        EXPECT_LE(wrappedLines(hostile, 100, CharacterWidths{QFont()}).size(), MaximumWrappedLines);
    }
}

TEST(RowList, isAsHighAsItsRowsAndFindsThem) {
    RowList list;
    std::vector<RowList::Row> rows(5000);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].heading = QStringLiteral("Row %1").arg(i);
        rows[i].text = QStringLiteral("word ").repeated(static_cast<int>(i % 40));
    }
    list.setRows(rows);
    EXPECT_GT(list.heightForWidth(200), list.heightForWidth(600));
    list.resize(600, list.heightForWidth(600));
    int bottom = 0;
    for (int i = 0; i < list.partCount(); ++i) {
        const QRect row = list.part(i).rect;
        ASSERT_EQ(row.top(), bottom) << i;
        ASSERT_EQ(list.partAt(row.center()), i);
        bottom = row.bottom() + 1;
    }
    EXPECT_EQ(bottom, list.height());
    EXPECT_EQ(list.partAt({5, bottom}), -1);
    EXPECT_EQ(list.partAt({5, -1}), -1);
}

} // namespace Ostrel
