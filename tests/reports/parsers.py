"""Two XML parsers that are not ours: expat, and libxml2 with its validation by an XSD."""

import ctypes
import ctypes.util
import xml.parsers.expat

SILENT = 32 | 64 | 2048  # XML_PARSE_NOERROR, XML_PARSE_NOWARNING, XML_PARSE_NONET

libxml2 = ctypes.CDLL(ctypes.util.find_library('xml2') or 'libxml2.so.2')
libxml2.xmlReadMemory.restype = ctypes.c_void_p
libxml2.xmlReadMemory.argtypes = [ctypes.c_char_p, ctypes.c_int, ctypes.c_char_p, ctypes.c_char_p,
                                  ctypes.c_int]
libxml2.xmlFreeDoc.argtypes = [ctypes.c_void_p]
for function in ('xmlSchemaNewParserCtxt', 'xmlSchemaParse', 'xmlSchemaNewValidCtxt'):
    getattr(libxml2, function).restype = ctypes.c_void_p
libxml2.xmlSchemaNewParserCtxt.argtypes = [ctypes.c_char_p]
libxml2.xmlSchemaParse.argtypes = [ctypes.c_void_p]
libxml2.xmlSchemaNewValidCtxt.argtypes = [ctypes.c_void_p]
libxml2.xmlSchemaValidateDoc.argtypes = [ctypes.c_void_p, ctypes.c_void_p]


class Schema:
    def __init__(self, path):
        parser = libxml2.xmlSchemaNewParserCtxt(str(path).encode())
        schema = libxml2.xmlSchemaParse(parser)
        assert schema, f'{path} is no XSD'
        self.context = libxml2.xmlSchemaNewValidCtxt(schema)

    def is_valid(self, document):
        return libxml2.xmlSchemaValidateDoc(self.context, document) == 0


def mistake(data, schema=None):
    """What is wrong with an XML document, or None."""
    try:
        xml.parsers.expat.ParserCreate().Parse(data, True)
    except xml.parsers.expat.ExpatError as error:
        return f'expat: {error}'
    document = libxml2.xmlReadMemory(data, len(data), b'report.xml', None, SILENT)
    if not document:
        return 'libxml2: not well-formed'
    try:
        valid = schema is None or schema.is_valid(document)
    finally:
        libxml2.xmlFreeDoc(document)
    return None if valid else 'libxml2: not valid by the XSD'
