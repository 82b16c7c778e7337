#include "settings/SettingsTable.h"

#include "settings/SettingsNames.h"

bool SettingDefault::Accepts(const QString& t) const {
    if (!otherChoice)
        return true;
    return t == QLatin1String(text) || t == QLatin1String(otherChoice);
}

QString StoredName(Setting s, int deck, int band) {
    QString name = QString::fromLatin1(RowOf(s).name);
    const SettingScope scope = RowOf(s).scope;
    if (scope != SettingScope::One)
        name.replace(QLatin1Char('@'), DeckLetter(deck));
    if (scope == SettingScope::Band)
        name.replace(QLatin1Char('#'), QString::number(band));
    return name;
}
