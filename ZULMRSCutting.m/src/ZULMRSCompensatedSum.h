#ifndef ZULMRSCompensatedSum_h
#define ZULMRSCompensatedSum_h

#include <cmath>

/// A sum of doubles whose error does not grow with the number of terms.
class ZULMRSCompensatedSum
{
public:
    void Add(double term)
    {
        const double sum = m_Sum + term;
        m_Lost += std::fabs(m_Sum) >= std::fabs(term) ? (m_Sum - sum) + term : (term - sum) + m_Sum;
        m_Sum = sum;
    }
    void Add(const ZULMRSCompensatedSum& other)
    {
        Add(other.m_Sum);
        m_Lost += other.m_Lost;
    }
    double Get() const { return m_Sum + m_Lost; }

private:
    double m_Sum = 0.0;
    double m_Lost = 0.0;
};

#endif
