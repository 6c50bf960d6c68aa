#include "OstrelGUI/Window/MediaPlayerMenuView.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelGUI/Window/Controls.h"
#include "OstrelGUI/Window/MediaPlayerTexts.h"
#include "OstrelGUI/Window/QtText.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelPlatform/UserDefaults.h"

#include <QVBoxLayout>

namespace Ostrel {

namespace {

constexpr std::string_view Music = "Music";
constexpr std::string_view Spotify = "Spotify";

Card* makeSection(const MediaPlayerTexts::Section& section) {
    auto* card = new Card;
    auto* head = new QHBoxLayout;
    head->setSpacing(10);
    head->addWidget(new SymbolView(section.symbol, 20, Tone::accent));
    QLabel* title = makeLabel(textOf(section.title));
    title->setFont(Type::heading(title->font()));
    head->addWidget(title, 1);
    card->column().addLayout(head);
    for (const std::string_view item : section.items) {
        auto* row = new QHBoxLayout;
        row->setSpacing(10);
        QLabel* dot = makeDimLabel(QStringLiteral("•"));
        dot->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
        dot->setFixedWidth(20);
        row->addWidget(dot);
        row->addWidget(makeDimLabel(textOf(item)), 1);
        card->column().addLayout(row);
    }
    card->setAccessibleName(textOf(section.title));
    return card;
}

} // namespace

MediaPlayerMenuView::MediaPlayerMenuView(
    UserDefaults& defaults, WindowDialogs& dialogs, Override onOverride, std::function<void()> ensureAppIsActive)
    : Page(QStringLiteral("Media Player"),
        QStringLiteral("Choose which application Ostrel targets for NowPlaying media commands."))
    , defaults_(defaults)
    , dialogs_(dialogs)
    , onOverride_(std::move(onOverride))
    , ensureAppIsActive_(std::move(ensureAppIsActive)) {
    auto* header = new Card;
    auto* row = new QHBoxLayout;
    row->addWidget(new SymbolView(Symbol::musicNote, 20, Tone::accent));
    QLabel* label = makeDimLabel(QStringLiteral("Current target:"));
    label->setWordWrap(false);
    row->addWidget(label);
    current_ = makeLabel({});
    current_->setFont(Type::strong(font()));
    row->addWidget(current_, 1);
    header->column().addLayout(row);
    column().addWidget(header);
    buildChoices();
    for (const MediaPlayerTexts::Section& section : MediaPlayerTexts::sections())
        column().addWidget(makeSection(section));
    column().addStretch();
    showTarget();
}

void MediaPlayerMenuView::buildChoices() {
    auto* card = new Card;
    card->column().setContentsMargins(6, 6, 6, 6);
    card->column().setSpacing(2);
    const auto add = [card](const QString& label, std::string_view subtitle, auto chosen) {
        auto* row = new OptionRow(label, textOf(subtitle));
        QObject::connect(row, &QAbstractButton::clicked, row, chosen);
        card->column().addWidget(row);
        return row;
    };
    default_ = add(QStringLiteral("Default (from skin)"), MediaPlayerTexts::DefaultSubtitle, [this] { choose({}); });
    music_ = add(textOf(Music), MediaPlayerTexts::MusicSubtitle, [this] { choose(std::string(Music)); });
    spotify_ = add(textOf(Spotify), MediaPlayerTexts::SpotifySubtitle, [this] { choose(std::string(Spotify)); });
    custom_ = add(QStringLiteral("Custom…"), MediaPlayerTexts::CustomSubtitle, [this] { promptForCustomPlayer(); });
    column().addWidget(card);
}

void MediaPlayerMenuView::showEvent(QShowEvent* event) {
    Page::showEvent(event);
    showTarget();
    syncOverride();
}

std::string MediaPlayerMenuView::target() const {
    return defaults_.string(TargetKey).value_or(std::string());
}

void MediaPlayerMenuView::choose(const std::string& player) {
    const bool isChange = player != target();
    if (isChange)
        defaults_.setString(TargetKey, player);
    // A click has moved the mark of its row, chosen anew or not.
    showTarget();
    if (isChange)
        syncOverride();
}

void MediaPlayerMenuView::promptForCustomPlayer() {
    showTarget();
    ensureAppIsActive_();
    WindowDialogs::Prompt prompt;
    prompt.title = QStringLiteral("Custom Media Player");
    prompt.text = QStringLiteral("Enter the exact application name (as it appears in /Applications).\n"
                                 "The app must support AppleScript media commands.");
    prompt.placeholder = QStringLiteral("e.g. VLC");
    prompt.value = textOf(target());
    dialogs_.ask(*window(), prompt, [this](const std::optional<QString>& answer) {
        const std::string typed = answer.value_or(QString()).toStdString();
        const std::string_view player = trimmedWhitespace(typed);
        if (player.empty())
            return;
        choose(std::string(player));
    });
}

void MediaPlayerMenuView::syncOverride() {
    const std::string player = target();
    if (onOverride_)
        onOverride_(player.empty() ? std::nullopt : std::optional(player));
}

void MediaPlayerMenuView::showTarget() {
    const std::string player = target();
    const bool isCustom = !player.empty() && player != Music && player != Spotify;
    current_->setText(player.empty() ? default_->text() : textOf(player));
    default_->setChecked(player.empty());
    music_->setChecked(player == Music);
    spotify_->setChecked(player == Spotify);
    custom_->setChecked(isCustom);
    custom_->setSubtitle(isCustom ? textOf(player) : textOf(MediaPlayerTexts::CustomSubtitle));
}

} // namespace Ostrel
