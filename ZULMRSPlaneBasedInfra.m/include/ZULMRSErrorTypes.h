#ifndef ZULMRSErrorTypes_h
#define ZULMRSErrorTypes_h

/// Status code of topological and factory operations. The numbers are fixed.
enum ZULMRSErrorTypes : int {
    ZULMRSNoError = 0,
    ZULMRSErrorInvalidInput = 1,        ///< a required input is missing
    ZULMRSErrorGriddingTolerance = 29,  ///< gridding tolerance too tight for the box
    ZULMRSErrorPointsNotUpdated = 46    ///< a polygon's vertex cache is incomplete
};

#endif
