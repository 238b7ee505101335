#include "bench/Sidecars.h"

namespace kelvara::bench {

std::string sidecarText(std::size_t number) {
    std::string text = "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
                       "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" x:xmptk=\"Bench\">\n"
                       " <rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
                       "  <rdf:Description rdf:about=\"\"\n"
                       "    xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\"\n"
                       "    xmlns:dc=\"http://purl.org/dc/elements/1.1/\"\n"
                       "    xmlns:set=\"http://example.org/settings/\"\n";
    text += "   xmp:Rating=\"" + std::to_string(number % 6) + "\"\n";
    for (std::size_t i = 0; i < 170; ++i) {
        text += "   set:Setting" + std::to_string(i) + "=\"" + std::to_string(number * 31 % 997 + i) + "\"\n";
    }
    text.insert(text.size() - 1, ">");
    text += "   <dc:subject>\n    <rdf:Bag>\n";
    for (std::size_t i = 0; i < 12; ++i) text += "     <rdf:li>keyword " + std::to_string(i) + "</rdf:li>\n";
    text += "    </rdf:Bag>\n   </dc:subject>\n";
    for (const char* curve : {"Red", "Green", "Blue", "All"}) {
        text += std::string{"   <set:Curve"} + curve + ">\n    <rdf:Seq>\n";
        for (std::size_t i = 0; i < 24; ++i) {
            text += "     <rdf:li>" + std::to_string(i * 11) + ", " + std::to_string(i * 10) + "</rdf:li>\n";
        }
        text += std::string{"    </rdf:Seq>\n   </set:Curve"} + curve + ">\n";
    }
    return text + "  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>\n";
}

} // namespace kelvara::bench
