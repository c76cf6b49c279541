# shellcheck shell=bash
# What mmdebstrap's folder becomes a machine by, run inside it, where apt still reaches packages.
set -euo pipefail
apt-get satisfy -y --no-install-recommends "$DEPENDS"
useradd -m -s /bin/bash anna
rm /etc/dpkg/dpkg.cfg.d/99mmdebstrap  # no documentation of others, but the package's own
echo force-unsafe-io > /etc/dpkg/dpkg.cfg.d/fast
echo 5a8d3d8c1f2b4e0e9c3f6b7a1d2e4c60 > /etc/machine-id  # without one, a first boot enables units by presets
cat > /etc/systemd/system/probe.service << 'END'
[Service]
ExecStart=/bin/bash /usr/local/sbin/probe
Restart=always
KillMode=process
IgnoreSIGPIPE=no
[Install]
WantedBy=multi-user.target
END
systemctl enable probe
systemctl mask getty@tty1 serial-getty@ttyS0 apt-daily.timer apt-daily-upgrade.timer dpkg-db-backup.timer \
  e2scrub_all.timer e2scrub_reap fstrim.timer

# A kernel without its own initramfs, which would take long to make; a small one knows the disk and nothing else.
cd "$(mktemp -d)"
apt-get download "$(apt-cache depends linux-image-cloud-amd64 | sed -n 's/.*Depends: //p')"
dpkg-deb -x linux-image-*.deb .
modules=$(find . -path '*lib/modules')  # where this release has them
rm -rf "$modules"/*/kernel/{drivers/{net,infiniband,scsi,gpu},net}
kernel=$(ls "$modules")
mv "$modules" /usr/lib/
depmod "$kernel"
mkdir -p initrd/{bin,dev,new,modules}
cp /bin/busybox initrd/bin/
number=10
modprobe --set-version="$kernel" --show-depends --all virtio_pci virtio_blk ext4 | grep ^insmod | awk '!seen[$0]++' |
  while read -r _ module _; do
    case $module in
      *.xz) busybox unxz -c "$module" ;;
      *) cat "$module" ;;
    esac > initrd/modules/$((number++)).ko
  done
cat > initrd/init << 'END'
#!/bin/busybox sh
busybox mount -t devtmpfs dev /dev
for module in /modules/*; do busybox insmod $module; done
until busybox mount -t ext4 /dev/vda /new; do busybox sleep 0.1; done
exec busybox switch_root /new /sbin/init
END
chmod +x initrd/init
(cd initrd && find . | busybox cpio -o -H newc | gzip -1) > /boot/initrd
mv boot/vmlinuz-* /boot/vmlinuz
rm -r "$PWD"
