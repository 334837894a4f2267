#ifndef TESTS_DESTRUCTIONPROBE_H
#define TESTS_DESTRUCTIONPROBE_H

#include <QtCore/QtGlobal>

#include <memory>

// Sets a flag when it is destroyed.
template <typename Base>
class DestructionProbe : public Base
{
public:
    explicit DestructionProbe(bool& isDestroyed) : m_isDestroyed(isDestroyed) {}
    ~DestructionProbe() override { m_isDestroyed = true; }

private:
    Q_DISABLE_COPY(DestructionProbe)

    bool& m_isDestroyed;
};

// Creates and destroys an object of Base, and, through a pointer to Base, one of a derived class;
// returns whether the derived part was destroyed, too.
template <typename Base>
bool isDestroyedThroughBase()
{
    std::unique_ptr<Base> object = std::make_unique<Base>();
    bool isDestroyed = false;
    object = std::make_unique<DestructionProbe<Base>>(isDestroyed);
    if (isDestroyed) {
        return false;
    }
    object.reset();
    return isDestroyed;
}

#endif
