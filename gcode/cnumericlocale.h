// Scoped switch of this thread's number format to the C locale, so that printf writes
// a decimal point even when the desktop's language writes a comma.
#ifndef CNUMERICLOCALE_H
#define CNUMERICLOCALE_H

#include <clocale>
#include <locale.h>

// Restores the caller's locale on every way out.
class CNumericLocale
{
public:
    CNumericLocale()
    {
        static locale_t cLocale = newlocale(LC_NUMERIC_MASK, "C", locale_t(nullptr));
        m_previous = cLocale ? uselocale(cLocale) : locale_t(nullptr);
    }
    ~CNumericLocale()
    {
        if (m_previous)
            uselocale(m_previous);
    }
    CNumericLocale(const CNumericLocale &) = delete;
    CNumericLocale &operator=(const CNumericLocale &) = delete;

private:
    locale_t m_previous;
};

#endif
