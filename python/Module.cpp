// SPDX-License-Identifier: Apache-2.0
//
// The module qvdeepheader._native. qvdeepheader/_native.pyi has its types.
#include "python/Answer.h"
#include "python/Argument.h"
#include "python/Errors.h"
#include "python/MessageList.h"
#include "python/ScanMany.h"
#include "python/Scanner.h"
#include "rules/format/AttributeTable.h"

#include <pybind11/pybind11.h>

PYBIND11_MODULE(_native, module) {
    using namespace Quorvane;
    namespace py = pybind11;
    module.attr("__version__") = QV_VERSION;
    py::tuple names(attributeTable.size());
    for (auto const& facts : attributeTable) {
        names[facts.m_index] = py::str(facts.m_name.data(), facts.m_name.size());
    }
    module.attr("attributes") = names;
    Python::registerErrors();
    Python::bindAnswer(module);
    Python::bindMessages(module);
    Python::bindScanMany(module);
    Python::bindScanner(module);
    Python::bindSettings(module);
}
