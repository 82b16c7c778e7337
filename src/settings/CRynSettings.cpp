#include "settings/CRynSettings.h"

#include <array>

#include "settings/WindowDefaults.h"

CRynSettings::CRynSettings(SettingsStore& store, ScreenSizeSource screen)
    : store_(store), screen_(std::move(screen)) {}

// The default rule: a value missing (or of the wrong type) is written with its
// default, then read back, so a value that cannot be saved still holds.
SettingsValue CRynSettings::ReadOrCreate(const QString& name, SettingType type,
                                         const SettingDefault& d) {
    if (type == SettingType::Text) {
        if (std::optional<QString> v = store_.FindText(name))
            return SettingsValue::OfText(*v);
        if (!d.none)
            store_.WriteText(name, QString::fromUtf8(d.text));
        return SettingsValue::OfText(store_.ReadText(name));
    }
    if (std::optional<std::uint32_t> v = store_.FindNumber(name))
        return SettingsValue::OfNumber(*v);
    if (!d.none)
        store_.WriteNumber(name, d.number);
    return SettingsValue::OfNumber(store_.ReadNumber(name));
}

SettingsValue CRynSettings::Read(Setting s, int deck, int band) {
    const SettingRow& row = RowOf(s);
    return ReadOrCreate(StoredName(s, deck, band), row.type, row.byDefault);
}

bool CRynSettings::Write(Setting s, int deck, int band, const SettingsValue& value) {
    const SettingRow& row = RowOf(s);
    const QString name = StoredName(s, deck, band);
    if (row.type == SettingType::Text) {
        if (value.kind != SettingsValue::Kind::Text || !row.byDefault.Accepts(value.text))
            return false;
        return store_.WriteText(name, value.text);
    }
    if (value.kind != SettingsValue::Kind::Number)
        return false;
    return store_.WriteNumber(name, value.number);
}

void CRynSettings::ReadEverySetting() {
    SettingsStore::Batch batch(store_);
    for (std::size_t i = 0; i < kSettingsTable.size(); ++i) {
        const Setting s = static_cast<Setting>(i);
        for (int deck = 0; deck < DeckCount(RowOf(s)); ++deck) {
            for (int band = 0; band < BandCount(RowOf(s)); ++band)
                Read(s, deck, band);
        }
    }
}

// Window records.
WindowRect CRynSettings::DefaultRect(SettingsWindow window, int deck, bool lowRes) {
    return DefaultWindowRect(window, deck, lowRes, screen_ ? screen_() : HeadlessScreenSize());
}

WindowRect CRynSettings::ReadWindowRect(SettingsWindow window, int deck, bool lowRes) {
    const std::array<QString, 4> names = {
        PositionName(window, deck, WindowField::Left, lowRes),
        PositionName(window, deck, WindowField::Top, lowRes),
        PositionName(window, deck, WindowField::Right, lowRes),
        PositionName(window, deck, WindowField::Bottom, lowRes),
    };
    std::array<std::optional<std::uint32_t>, 4> stored;
    for (int i = 0; i < 4; ++i)
        stored[i] = store_.FindNumber(names[i]);
    const bool complete = stored[0] && stored[1] && stored[2] && stored[3];
    if (complete)
        return {static_cast<int>(*stored[0]), static_cast<int>(*stored[1]),
                static_cast<int>(*stored[2]), static_cast<int>(*stored[3])};
    WriteWindowRect(window, deck, lowRes, DefaultRect(window, deck, lowRes));
    auto read = [&](int i) { return static_cast<int>(store_.ReadNumber(names[i])); };
    return {read(0), read(1), read(2), read(3)};
}

bool CRynSettings::WriteWindowRect(SettingsWindow window, int deck, bool lowRes,
                                   const WindowRect& rect) {
    SettingsStore::Batch batch(store_);
    auto write = [&](WindowField field, int value) {
        return store_.WriteNumber(PositionName(window, deck, field, lowRes),
                                  static_cast<std::uint32_t>(value));
    };
    bool ok = write(WindowField::Left, rect.left);
    ok = write(WindowField::Top, rect.top) && ok;
    ok = write(WindowField::Right, rect.right) && ok;
    ok = write(WindowField::Bottom, rect.bottom) && ok;
    return batch.Commit() && ok;
}

bool CRynSettings::ReadHasMoved(SettingsWindow window, int deck) {
    const QString name = PositionName(window, deck, WindowField::HasMoved, false);
    return ReadOrCreate(name, SettingType::Flag, false).number != 0;
}

bool CRynSettings::WriteHasMoved(SettingsWindow window, int deck, bool moved) {
    return WriteFlag(PositionName(window, deck, WindowField::HasMoved, false), moved);
}

int CRynSettings::ReadOrdinal(SettingsWindow window, int deck) {
    return static_cast<int>(
        store_.ReadNumber(PositionName(window, deck, WindowField::Ordinal, false)));
}

bool CRynSettings::WriteOrdinal(SettingsWindow window, int deck, int ordinal) {
    return store_.WriteNumber(PositionName(window, deck, WindowField::Ordinal, false),
                              static_cast<std::uint32_t>(ordinal));
}

bool CRynSettings::ReadShow(SettingsWindow window, int deck, bool lowRes) {
    const QString name = ShowName(window, deck, lowRes);
    return ReadOrCreate(name, SettingType::Flag, DefaultShown(window)).number != 0;
}

bool CRynSettings::WriteShow(SettingsWindow window, int deck, bool lowRes, bool shown) {
    return WriteFlag(ShowName(window, deck, lowRes), shown);
}

CRynSettings& Settings() {
    static SettingsStore store(SettingsStore::DefaultPath());
    static CRynSettings settings(store);
    return settings;
}
