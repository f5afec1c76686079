#pragma once

#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyTraits.h>

#include <memory>
#include <utility>

template <class T>
class LyrSingleValuePropertyExtensionIF;

/** A property that holds one value of type T. */
template <class T>
class LyrSingleValuePropertyIF : public LyrProperty {
public:
    using ValueType = T;
    using Traits = LyrPropertyTraits<T>;

    /** The typed interface of a property; null for null and for a property of another type. */
    static LyrSingleValuePropertyIF* getInterface(LyrProperty* property) noexcept {
        const bool fits =
            property && !property->isArray() && lyrInterfaceType(property->getValueType()) == Traits::type;
        return fits ? static_cast<LyrSingleValuePropertyIF*>(property) : nullptr;
    }
    static const LyrSingleValuePropertyIF* getInterfaceConst(const LyrProperty* property) noexcept {
        return getInterface(const_cast<LyrProperty*>(property));
    }

    /** Reads through the extensions. A text stays valid until the next write. */
    bool getValue(T& out) const {
        auto* extension = LyrSingleValuePropertyExtensionIF<T>::firstOf(firstExtension());
        return extension ? extension->readData(out) : readStored(out);
    }

    /** Writes through the extensions. True if the property holds the value afterwards. */
    bool setValue(const T& value) {
        if (isReadOnly()) {
            return false;
        }
        auto* extension = LyrSingleValuePropertyExtensionIF<T>::firstOf(firstExtension());
        return extension ? extension->writeData(value) : writeStored(value);
    }

    virtual T getResetValue() const = 0;
    /** Sets what getResetValue() and resetData() give from now on, for a class whose default differs from that of its
     * parent; the value stays as it is. False where memory ran out or the default cannot be changed. */
    virtual bool setResetValue(const T&) { return false; }

    /** The verdict on a value that is about to be written (`forWrite`) or only asked about: 1 accepts it. */
    virtual unsigned int checkData(const T&, bool /*forWrite*/) const { return 1; }

    LyrValueType getValueType() const noexcept override { return Traits::type; }
    bool isArray() const noexcept override { return false; }

    bool copyValueFrom(const LyrProperty& source) override {
        T value{};
        const auto* typed = getInterfaceConst(&source);
        return typed && typed->getValue(value) && setValue(value);
    }

protected:
    friend class LyrSingleValuePropertyExtensionIF<T>;
    virtual bool readStored(T& out) const = 0;
    virtual bool writeStored(const T& value) = 0;
    /** Stores without telling anybody: for values that mirror others. */
    virtual bool storeSilently(const T& value) = 0;
};

/** An extension that sees or replaces the reads and writes of a single value. */
template <class T>
class LyrSingleValuePropertyExtensionIF : public LyrProperty::Extension {
public:
    /** Reads the value; the base passes to the extension behind, at last to the property itself. */
    virtual bool readData(T& value) { return readBehind(value); }
    virtual bool writeData(const T& value) { return writeBehind(value); }

    int getExtensionValueType() const noexcept override { return int(LyrPropertyTraits<T>::type); }

    /** The first extension of this type in a chain. */
    static LyrSingleValuePropertyExtensionIF* firstOf(LyrProperty::Extension* chain) noexcept {
        while (chain && chain->getExtensionValueType() != int(LyrPropertyTraits<T>::type)) {
            chain = chain->nextExtension();
        }
        return static_cast<LyrSingleValuePropertyExtensionIF*>(chain);
    }

protected:
    bool readBehind(T& value) {
        auto* typed = LyrSingleValuePropertyIF<T>::getInterface(getProperty());
        auto* behind = firstOf(nextExtension());
        return behind ? behind->readData(value) : typed && typed->readStored(value);
    }
    bool writeBehind(const T& value) {
        auto* typed = LyrSingleValuePropertyIF<T>::getInterface(getProperty());
        auto* behind = firstOf(nextExtension());
        return behind ? behind->writeData(value) : typed && typed->writeStored(value);
    }
    bool storeSilently(const T& value) {
        auto* typed = LyrSingleValuePropertyIF<T>::getInterface(getProperty());
        return typed && typed->storeSilently(value);
    }
};

/** A single value kept in the property itself, with its reset value. */
template <class IF, class Storage = typename LyrPropertyTraits<typename IF::ValueType>::Storage>
class LyrSingleValueOP : public IF {
public:
    using T = typename IF::ValueType;
    using Traits = LyrPropertyTraits<T>;

    LyrSingleValueOP() = default;

    T getResetValue() const override { return Traits::fromStorage(mResetValue); }
    bool setResetValue(const T& value) override {
        try {
            mResetValue = Traits::toStorage(value);
            return true;
        } catch (...) {
            return this->emitError(Lyr::AllocationFailed);
        }
    }
    bool resetData() override { return this->setValue(getResetValue()); }

    std::unique_ptr<LyrProperty::State> takeState() const override {
        try {
            return std::make_unique<ValueState>(mValue);
        } catch (...) {
            return nullptr;
        }
    }
    bool restoreState(LyrProperty::State& state) override {
        Storage& other = static_cast<ValueState&>(state).value;
        if (this->checkData(Traits::fromStorage(other), true) != 1) {
            return false;
        }
        if (Traits::same(mValue, Traits::fromStorage(other))) {
            return true;
        }
        return this->write([&] {
            std::swap(mValue, other);
            return true;
        });
    }

    /** The stored value itself, extensions left out. */
    const Storage& stored() const noexcept { return mValue; }

protected:
    bool readStored(T& out) const override {
        out = Traits::fromStorage(mValue);
        return true;
    }
    bool writeStored(const T& value) override {
        if (this->checkData(value, true) != 1) {
            return false;
        }
        if (Traits::same(mValue, value)) {
            return true;
        }
        return this->write([&] {
            mValue = Traits::toStorage(value);
            return true;
        });
    }
    bool storeSilently(const T& value) override {
        try {
            mValue = Traits::toStorage(value);
            return true;
        } catch (...) {
            return this->emitError(Lyr::AllocationFailed);
        }
    }

private:
    struct ValueState : LyrProperty::State {
        explicit ValueState(const Storage& stored) : value(stored) {}
        Storage value;
    };

    Storage mValue{};
    Storage mResetValue{};
};
