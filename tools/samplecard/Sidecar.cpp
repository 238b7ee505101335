#include "samplecard/Sidecar.h"

#include <fmt/format.h>

namespace kelvara::samplecard {

std::string sidecarWithAttribute(int stars) {
    return fmt::format(R"(<x:xmpmeta xmlns:x="adobe:ns:meta/" x:xmptk="Card Tool">
 <rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
  <rdf:Description rdf:about="" xmlns:xmp="http://ns.adobe.com/xap/1.0/" xmp:Rating="{}" xmp:MetadataDate="2024-05-04T20:10:00Z"/>
 </rdf:RDF>
</x:xmpmeta>
)",
                       stars);
}

std::string sidecarWithElement(const std::string& rating) {
    return fmt::format(R"(<?xpacket begin="{}" id="W5M0MpCehiHzreSzNTczkc9d"?>
<!-- Kept by hand: do not sort the attributes. -->
<x:xmpmeta xmlns:x='adobe:ns:meta/'  x:xmptk='Catalogue 3.1'>
	<rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
  <rdf:Description
      rdf:about = ''
      xmlns:crs="http://ns.adobe.com/camera-raw-settings/1.0/"
    crs:Exposure2012="+0.45"   crs:Contrast2012='-8'
      crs:WhiteBalance="As Shot" crs:HasCrop="False"/>

    <rdf:Description rdf:about="" xmlns:base="http://ns.adobe.com/xap/1.0/" xmlns:dc="http://purl.org/dc/elements/1.1/">
      <base:Rating> {} </base:Rating><!-- second look -->
      <base:Label>Gr&#xFC;n &amp; gut</base:Label>
      <dc:subject>
        <rdf:Bag>
          <rdf:li>mountains</rdf:li>
          <rdf:li>h&#xE9;lice &lt;rare&gt;</rdf:li>
        </rdf:Bag>
      </dc:subject>
      <dc:title><rdf:Alt><rdf:li xml:lang="x-default"><![CDATA[Before & after]]></rdf:li></rdf:Alt></dc:title>
    </rdf:Description>
	</rdf:RDF>
</x:xmpmeta>
<?xpacket end='w'?>
)",
                       "\xEF\xBB\xBF", rating);
}

std::string sidecarWithoutRating() {
    return R"(<x:xmpmeta xmlns:x="adobe:ns:meta/">
 <rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">
  <rdf:Description rdf:about="" xmlns:crs="http://ns.adobe.com/camera-raw-settings/1.0/" crs:Exposure2012="-0.30"/>
 </rdf:RDF>
</x:xmpmeta>
)";
}

} // namespace kelvara::samplecard
