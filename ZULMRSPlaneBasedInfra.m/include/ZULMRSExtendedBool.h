#ifndef ZULMRSExtendedBool_h
#define ZULMRSExtendedBool_h

/// Three-valued answer of a predicate, in a signed byte.
enum ZULMRSExtendedBool : signed char {
    ZULMRSExtendedFalse = -1,
    ZULMRSExtendedUndetermined = 0,  ///< neither; for an orientation: exactly on the plane
    ZULMRSExtendedTrue = 1
};

/// The opposite answer: true and false change places, every other value gives undetermined.
inline ZULMRSExtendedBool ExchangeBool(ZULMRSExtendedBool answer)
{
    switch (static_cast<int>(answer)) {
        case -1:
            return ZULMRSExtendedTrue;
        case 1:
            return ZULMRSExtendedFalse;
        default:
            return ZULMRSExtendedUndetermined;
    }
}

#endif
