// The settings table walked row by row through the named getters and setters:
// a fresh store answers each default and writes it under the exact stored name
// with the row's type; a value set through the setter reads back bit-exact, in
// this run and the next, for both decks and every band.
#include <gtest/gtest.h>

#include <bit>
#include <functional>
#include <vector>

#include "SettingsTestSupport.h"
#include "settings/SettingsTable.h"

using settingstest::Fixture;

namespace {

SettingsValue AsValue(bool on) {
    return SettingsValue::OfNumber(on ? 1 : 0);
}
SettingsValue AsValue(int n) {
    return SettingsValue::OfNumber(static_cast<std::uint32_t>(n));
}
SettingsValue AsValue(float r) {
    return SettingsValue::OfNumber(std::bit_cast<std::uint32_t>(r));
}
SettingsValue AsValue(const QString& t) {
    return SettingsValue::OfText(t);
}

template <SettingType T>
SettingValueOf<T> FromValue(const SettingsValue& v) {
    if constexpr (T == SettingType::Flag)
        return v.number != 0;
    else if constexpr (T == SettingType::Number)
        return static_cast<int>(v.number);
    else if constexpr (T == SettingType::Real)
        return std::bit_cast<float>(v.number);
    else
        return v.text;
}

// A row's named getter and setter, over SettingsValue.
struct NamedAccess {
    Setting setting;
    std::function<SettingsValue(CRynSettings&, int deck, int band)> get;
    std::function<bool(CRynSettings&, int deck, int band, const SettingsValue&)> set;
};

#define NAMED_ONE(A, name, T, d)                                                           \
    NamedAccess{Setting::A, [](CRynSettings& s, int, int) { return AsValue(s.Get##A()); }, \
                [](CRynSettings& s, int, int, const SettingsValue& v) {                    \
                    return s.Set##A(FromValue<SettingType::T>(v));                         \
                }},
#define NAMED_DECK(A, name, T, d)                                                       \
    NamedAccess{Setting::A,                                                             \
                [](CRynSettings& s, int deck, int) { return AsValue(s.Get##A(deck)); }, \
                [](CRynSettings& s, int deck, int, const SettingsValue& v) {            \
                    return s.Set##A(deck, FromValue<SettingType::T>(v));                \
                }},
#define NAMED_BAND(A, name, T, d)                                                                  \
    NamedAccess{Setting::A,                                                                        \
                [](CRynSettings& s, int deck, int band) { return AsValue(s.Get##A(deck, band)); }, \
                [](CRynSettings& s, int deck, int band, const SettingsValue& v) {                  \
                    return s.Set##A(deck, band, FromValue<SettingType::T>(v));                     \
                }},
const std::vector<NamedAccess> kNamed = {MIXORA_SETTINGS(NAMED_ONE, NAMED_DECK, NAMED_BAND)};
#undef NAMED_ONE
#undef NAMED_DECK
#undef NAMED_BAND

// What a fresh store answers for a row.
SettingsValue DefaultOf(const SettingRow& row) {
    if (row.type != SettingType::Text)
        return SettingsValue::OfNumber(row.byDefault.none ? 0 : row.byDefault.number);
    return SettingsValue::OfText(QString::fromUtf8(row.byDefault.none ? "" : row.byDefault.text));
}

// A value other than the default, different per deck and band: for reals a
// NaN with a payload, which only a bit-exact store keeps; for numbers a
// negative one; for a text with fixed choices its other choice.
SettingsValue ChangedValue(const SettingRow& row, int deck, int band) {
    const std::uint32_t salt = static_cast<std::uint32_t>(deck * 16 + band);
    switch (row.type) {
        case SettingType::Flag:
            return SettingsValue::OfNumber(row.byDefault.number != 0 ? 0 : 1);
        case SettingType::Number:
            return SettingsValue::OfNumber(0xFFFFFF00u + salt);
        case SettingType::Real:
            return SettingsValue::OfNumber(0x7FC00123u + salt);
        case SettingType::Text:
            break;
    }
    if (row.byDefault.otherChoice)
        return SettingsValue::OfText(QString::fromUtf8(row.byDefault.otherChoice));
    return SettingsValue::OfText(QStringLiteral("Größe \"%1\" = ; # \\ %2").arg(deck).arg(band));
}

}  // namespace

TEST(SettingsTable, EveryRowKeepsItsDefaultItsNameItsTypeAndWhatItsSetterStores) {
    ASSERT_EQ(kNamed.size(), kSettingsTable.size());
    for (const NamedAccess& access : kNamed) {
        const SettingRow& row = RowOf(access.setting);
        for (int deck = 0; deck < DeckCount(row); ++deck) {
            for (int band = 0; band < BandCount(row); ++band) {
                const QString name = StoredName(access.setting, deck, band);
                SCOPED_TRACE(name.toStdString());
                EXPECT_FALSE(name.contains('@') || name.contains('#'));
                Fixture f;
                const SettingsValue byDefault = DefaultOf(row);
                EXPECT_EQ(access.get(*f.settings, deck, band), byDefault);
                if (row.byDefault.none)
                    EXPECT_TRUE(f.FileValues().isEmpty());
                else
                    EXPECT_EQ(f.FileValues(), (SettingsMap{{name, byDefault}}));

                const SettingsValue changed = ChangedValue(row, deck, band);
                EXPECT_TRUE(access.set(*f.settings, deck, band, changed));
                EXPECT_EQ(access.get(*f.settings, deck, band), changed);
                EXPECT_EQ(f.FileValues(), (SettingsMap{{name, changed}}));
                f.Reopen();
                EXPECT_EQ(access.get(*f.settings, deck, band), changed);
                EXPECT_TRUE(f.messages.isEmpty());
            }
        }
    }
}
