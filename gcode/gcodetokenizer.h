// Splits one line of G-code into its words (a letter and a number each), skipping comments.
// The one tokenizer for every reader of G-code files: the toolpath preview and the job runner.
#ifndef GCODETOKENIZER_H
#define GCODETOKENIZER_H

#include <QByteArray>

class GcodeTokenizer
{
public:
    struct Word
    {
        char letter;  // upper case
        double value;
    };

    // More words than this on one line means the line is not understood.
    static constexpr int MaxWords = 32;

    // Splits TEXT (LENGTH bytes, no line end needed) into WORDS, MaxWords at most, and sets
    // COUNT. Comments after ';' and in parentheses are skipped, blanks between a letter and its
    // number are allowed ("G1X5 Y 6"). Returns false when the line holds anything else (a
    // system command such as "$H", a letter without a number, a word too many): the words
    // found before that point are still given.
    static bool split(const char *text, int length, Word *words, int *count);

    // The line with its comments removed and blanks trimmed at both ends; empty for a line
    // that holds only a comment or blanks. An unclosed '(' runs to the end of the line.
    static QByteArray stripComments(const char *text, int length);
    static QByteArray stripComments(const QByteArray &line) { return stripComments(line.constData(), line.size()); }
};

#endif
