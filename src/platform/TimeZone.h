#pragma once

// The machine's time-zone bias: minutes to add to local standard time to get UTC
// (UTC minus local, daylight saving left out). eBay's Pacific times are converted with it.
class TimeZone
{
public:
    virtual ~TimeZone() = default;
    virtual int bias() const = 0;
};

class SystemTimeZone : public TimeZone
{
public:
    int bias() const override;
};

class FixedTimeZone : public TimeZone
{
public:
    explicit FixedTimeZone(int bias) : m_bias(bias) {}
    int bias() const override { return m_bias; }

private:
    int m_bias;
};
