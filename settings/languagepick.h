// Texts written in code as a Chinese and an English literal: the language index chosen
// at start-up (0 Chinese, 1 English, 2 Korean) picks one of them.
#ifndef LANGUAGEPICK_H
#define LANGUAGEPICK_H

namespace LanguagePick {

constexpr int Chinese = 0;
constexpr int English = 1;

// The Chinese text for index 0, the English one for 1, `other` for any other language.
template <typename Text>
Text pick(int languageIndex, Text chinese, Text english, Text other = Text())
{
    if (languageIndex == Chinese)
        return chinese;
    if (languageIndex == English)
        return english;
    return other;
}

}  // namespace LanguagePick

#endif
